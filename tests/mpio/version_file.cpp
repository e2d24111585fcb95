// A file that is read for its version resource and never run.
extern "C" int quistaVersionFile() {
    return 0;
}

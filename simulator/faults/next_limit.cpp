#include "simulator/faults/next_limit.h"

#include <windows.h>

#include <cstdio>

namespace quista::simulator {

void NextLimit::set(unsigned calls, unsigned exitCode) {
    calls_ = calls;
    seen_ = 0;
    exitCode_ = exitCode;
}

void NextLimit::count() {
    if (calls_ == 0 || ++seen_ <= calls_) return;
    // The client is in the middle of a call: nothing of it may run again, not even its destructors.
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), exitCode_);
}

}  // namespace quista::simulator

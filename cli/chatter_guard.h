// Keeps what the library prints out of the tool's own output.
#pragma once

namespace quista::cli {

/// While it lives, the C runtime's standard output goes to standard error. Some library calls print
/// there by contract: the controller listing, the complaint about a log that cannot be opened.
class ChatterGuard {
  public:
    ChatterGuard();
    ~ChatterGuard();
    ChatterGuard(const ChatterGuard&) = delete;
    ChatterGuard& operator=(const ChatterGuard&) = delete;

  private:
    int savedOutput_ = -1;
};

/// While it lives, inside a ChatterGuard, what the library prints is dropped: for calls whose
/// chatter is no news, such as a listing that the tool shows itself.
class MutedChatter {
  public:
    MutedChatter();
    ~MutedChatter();
    MutedChatter(const MutedChatter&) = delete;
    MutedChatter& operator=(const MutedChatter&) = delete;

  private:
    int savedOutput_ = -1;
};

}  // namespace quista::cli

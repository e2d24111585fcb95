// Ends the process after a number of Next calls, for clients that never stop calling.
#pragma once

namespace quista::simulator {

class NextLimit {
  public:
    /// 0 calls switch the limit off.
    void set(unsigned calls, unsigned exitCode);
    /// Counts one call; does not return when it is the one too many.
    void count();

  private:
    unsigned calls_ = 0;
    unsigned seen_ = 0;
    unsigned exitCode_ = 0;
};

}  // namespace quista::simulator

// Counts matching calls and tells which of them a fault or an override is meant for.
#pragma once

namespace quista::simulator {

class Occurrences {
  public:
    /// From the `first` call (counted from 1) on, for `count` calls; 0 means all.
    Occurrences(unsigned first, unsigned count) : first_(first == 0 ? 1 : first), count_(count) {}

    /// Counts one matching call; true when it is one of those meant.
    bool next() {
        ++seen_;
        return seen_ >= first_ && (count_ == 0 || seen_ - first_ < count_);
    }

  private:
    unsigned first_;
    unsigned count_;
    unsigned seen_ = 0;
};

}  // namespace quista::simulator

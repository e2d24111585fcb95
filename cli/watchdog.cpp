#include "cli/watchdog.h"

#include <utility>

namespace quista::cli {

Watchdog::Watchdog(std::optional<std::chrono::milliseconds> limit, Expired expired)
    : expired_(std::move(expired)) {
    if (!limit) return;
    const auto deadline = std::chrono::steady_clock::now() + *limit;
    thread_ = std::thread([this, deadline] { watch(deadline); });
}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) thread_.join();
}

void Watchdog::begin(const char* call) {
    const std::lock_guard lock(mutex_);
    call_ = call;
    changed_.notify_all();
}

void Watchdog::end() {
    const std::lock_guard lock(mutex_);
    call_.clear();
}

void Watchdog::check() {
    const std::lock_guard lock(mutex_);
    if (isOver_) throw TimedOut(call_);
}

// Past the deadline the next call that runs is the overdue one. The lock is held while it is
// reported, so that the call cannot return in between and print a second result.
void Watchdog::watch(std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(mutex_);
    if (changed_.wait_until(lock, deadline, [this] { return isStopping_; })) return;
    changed_.wait(lock, [this] { return isStopping_ || !call_.empty(); });
    if (isStopping_) return;
    isOver_ = true;
    expired_(call_);
}

}  // namespace quista::cli

#include "cli/watchdog.h"

#include <utility>

namespace quista::cli {

Watchdog::Watchdog(std::optional<std::chrono::milliseconds> limit, Expired expired)
    : expired_(std::move(expired)) {
    if (!limit) return;
    deadline_ = std::chrono::steady_clock::now() + *limit;
    thread_ = std::thread([this] { watch(); });
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

void Watchdog::pause() {
    const std::lock_guard lock(mutex_);
    isPaused_ = true;
    pausedAt_ = std::chrono::steady_clock::now();
    changed_.notify_all();
}

void Watchdog::resume() {
    const std::lock_guard lock(mutex_);
    isPaused_ = false;
    deadline_ += std::chrono::steady_clock::now() - pausedAt_;
    changed_.notify_all();
}

// Past the deadline the next call that runs is the overdue one. The lock is held while it is
// reported, so that the call cannot return in between and print a second result.
void Watchdog::watch() {
    std::unique_lock lock(mutex_);
    while (!isStopping_) {
        if (isPaused_) {
            changed_.wait(lock);
        } else if (std::chrono::steady_clock::now() < deadline_) {
            changed_.wait_until(lock, deadline_);
        } else if (call_.empty()) {
            changed_.wait(lock);
        } else {
            isOver_ = true;
            expired_(call_);
            return;
        }
    }
}

}  // namespace quista::cli

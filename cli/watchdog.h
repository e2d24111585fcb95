// Guards against library calls that never return: WMI may wait without limit.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "cli/failure.h"

namespace quista::cli {

/// Thrown by a guarded call after its time ran out. Reaches nobody in the tool itself, whose
/// process has ended by then.
class TimedOut : public Failure {
  public:
    explicit TimedOut(const std::string& call)
        : Failure(ExitCode::kTimedOut, DSM_SUCCESS, call + " did not return in time") {}
};

/// One time limit for all guarded calls together.
class Watchdog {
  public:
    /// Told from a thread of its own which call is overdue; ends the process.
    using Expired = std::function<void(const std::string& call)>;

    /// @param limit no limit when empty
    Watchdog(std::optional<std::chrono::milliseconds> limit, Expired expired);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// Runs `body`, known by the name `call`.
    template <class Body>
    auto guard(const char* call, Body&& body) {
        const Running running(*this, call);
        auto result = body();
        running.check();
        return result;
    }

    /// Stops the clock while it lives, outside of any call.
    class Pause {
      public:
        explicit Pause(Watchdog& owner) : owner_(owner) { owner_.pause(); }
        ~Pause() { owner_.resume(); }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

      private:
        Watchdog& owner_;
    };

  private:
    /// A call while it runs.
    class Running {
      public:
        Running(Watchdog& owner, const char* call) : owner_(owner) { owner_.begin(call); }
        ~Running() { owner_.end(); }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        void check() const { owner_.check(); }

      private:
        Watchdog& owner_;
    };

    void begin(const char* call);
    void end();
    void check();
    void pause();
    void resume();
    void watch();

    Expired expired_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string call_;  ///< the running call, empty between calls
    std::chrono::steady_clock::time_point deadline_;
    std::chrono::steady_clock::time_point pausedAt_;
    bool isPaused_ = false;
    bool isOver_ = false;
    bool isStopping_ = false;
    std::thread thread_;
};

}  // namespace quista::cli

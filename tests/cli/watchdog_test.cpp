#include "cli/watchdog.h"

#include <atomic>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <thread>

namespace quista::cli {
namespace {

using namespace std::chrono_literals;

TEST(WatchdogTest, CallThatReturnsInTimeGivesItsResult) {
    Watchdog watchdog(60s, [](const std::string&) { ADD_FAILURE() << "nothing is overdue"; });
    EXPECT_EQ(watchdog.guard("Fast", [] { return 42; }), 42);
}

TEST(WatchdogTest, OverdueCallIsNamed) {
    std::promise<std::string> overdue;
    Watchdog watchdog(10ms, [&](const std::string& call) { overdue.set_value(call); });
    auto reported = overdue.get_future();
    EXPECT_THROW(watchdog.guard("Slow",
                                [&] {
                                    EXPECT_EQ(reported.wait_for(60s), std::future_status::ready);
                                    return 0;
                                }),
                 TimedOut);
    EXPECT_EQ(reported.get(), "Slow");
}

TEST(WatchdogTest, CallAfterTheDeadlineIsOverdueAtOnce) {
    std::promise<std::string> overdue;
    Watchdog watchdog(0ms, [&](const std::string& call) { overdue.set_value(call); });
    std::this_thread::sleep_for(20ms);
    auto reported = overdue.get_future();
    EXPECT_EQ(reported.wait_for(0s), std::future_status::timeout) << "no call is running";
    EXPECT_THROW(watchdog.guard("Late", [&] { return reported.wait_for(60s); }), TimedOut);
}

TEST(WatchdogTest, PauseStopsTheClock) {
    Watchdog watchdog(200ms, [](const std::string&) { ADD_FAILURE() << "nothing is overdue"; });
    {
        const Watchdog::Pause pause(watchdog);
        std::this_thread::sleep_for(400ms);
    }
    EXPECT_EQ(watchdog.guard("Fast", [] { return 42; }), 42);
}

TEST(WatchdogTest, WithoutLimitNothingIsOverdue) {
    Watchdog watchdog(std::nullopt, [](const std::string&) { ADD_FAILURE(); });
    EXPECT_EQ(watchdog.guard("Slow",
                             [] {
                                 std::this_thread::sleep_for(20ms);
                                 return 1;
                             }),
              1);
}

TEST(WatchdogTest, CallThatThrowsIsOver) {
    std::atomic<bool> isOverdue = false;
    {
        Watchdog watchdog(50ms, [&](const std::string&) { isOverdue = true; });
        EXPECT_THROW(watchdog.guard("Failing", []() -> int { throw std::runtime_error("x"); }),
                     std::runtime_error);
        std::this_thread::sleep_for(100ms);
    }
    EXPECT_FALSE(isOverdue);
}

}  // namespace
}  // namespace quista::cli

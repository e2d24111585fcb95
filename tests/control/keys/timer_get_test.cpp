// MPIO's timers are read, one by one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/keys/timer_table.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned long kUntouched = 0xA5;
const std::string kNextPlace = "GetMpioTimersCounters: IEnumWbemClassObject::Next";

class TimerGetTest : public TimerTest {
  protected:
    /// Every getter fails, leaves its caller's variable alone and logs this line.
    void expectFailure(const LogLine& line) {
        for (const Timer& timer : timers()) {
            SCOPED_TRACE(timer.name());
            unsigned long value = kUntouched;
            EXPECT_EQ(timer.get(value), DSM_WMI_PARSING_ERROR);
            EXPECT_EQ(value, kUntouched);
            EXPECT_THAT(log.take(), ElementsAre(line));
        }
    }
};

TEST_F(TimerGetTest, EachGetterReadsItsOwn) {
    for (const Timer& timer : timers()) {
        unsigned long value = kUntouched;
        EXPECT_EQ(timer.get(value), DSM_SUCCESS) << timer.name();
        EXPECT_EQ(value, timer.value) << timer.name();
    }
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(unchanged());
}

TEST_F(TimerGetTest, EachGetterReadsAllFive) {
    for (const Timer& timer : timers()) {
        host->clearTrace();
        unsigned long value = 0;
        timer.get(value);
        EXPECT_THAT(calls(), ElementsAre(L"CreateInstanceEnum MPIO_TIMERS_COUNTERS",
                                         L"Next MPIO_TIMERS_COUNTERS",
                                         L"Get MPIO_TIMERS_COUNTERS.PathVerifyEnabled",
                                         L"Get MPIO_TIMERS_COUNTERS.PathVerificationPeriod",
                                         L"Get MPIO_TIMERS_COUNTERS.PDORemovePeriod",
                                         L"Get MPIO_TIMERS_COUNTERS.RetryCount",
                                         L"Get MPIO_TIMERS_COUNTERS.RetryInterval"));
    }
}

TEST_F(TimerGetTest, OnlyTheFirstInstanceIsRead) {
    host.add(timerInstance(L"another").number(L"RetryCount", 99));
    unsigned long count = 0;
    EXPECT_EQ(DSMGetRetryCount(&count), DSM_SUCCESS);
    EXPECT_EQ(count, 13u);
}

TEST_F(TimerGetTest, PathVerifyEnabled_IsTheLowByte) {
    host.replaceValue(kTimerClass, L"PathVerifyEnabled", Value::number(0x01020344));
    const GuardedBuffer enabled(1);
    EXPECT_EQ(DSMGetPathVerifyEnabled(enabled.data()), DSM_SUCCESS);
    EXPECT_EQ(*enabled.data(), 0x44);
    host->clearFaults();
    host.replaceValue(kTimerClass, L"PathVerifyEnabled", Value::number(0x100));
    EXPECT_EQ(DSMGetPathVerifyEnabled(enabled.data()), DSM_SUCCESS);
    EXPECT_EQ(*enabled.data(), 0);
}

TEST_F(TimerGetTest, TheOthersHave32Bits) {
    const GuardedBuffer value(sizeof(unsigned long));
    host.replaceValue(kTimerClass, L"RetryInterval", Value::number(-1));
    EXPECT_EQ(DSMGetRetryInterval(value.as<unsigned long>()), DSM_SUCCESS);
    EXPECT_EQ(*value.as<unsigned long>(), 0xFFFFFFFFu);
}

TEST_F(TimerGetTest, ValuesAreRaw) {
    unsigned long value = kUntouched;
    host.replaceValue(kTimerClass, L"RetryCount", Value::byte(200));
    EXPECT_EQ(DSMGetRetryCount(&value), DSM_SUCCESS);
    EXPECT_EQ(value, 200u);
    host.replaceValue(kTimerClass, L"PDORemovePeriod", Value::boolean(true));
    EXPECT_EQ(DSMGetPDORemovePeriod(&value), DSM_SUCCESS);
    EXPECT_EQ(value, 0xFFFFu);
    host.replaceValue(kTimerClass, L"RetryInterval", Value::null());
    EXPECT_EQ(DSMGetRetryInterval(&value), DSM_SUCCESS);
    EXPECT_EQ(value, 0u);
}

TEST_F(TimerGetTest, NothingIsKept) {
    unsigned long value = 0;
    DSMGetRetryCount(&value);
    const AllocationScope scope;
    const LiveObjectsCheck live(host);
    for (const Timer& timer : timers()) EXPECT_EQ(timer.get(value), DSM_SUCCESS);
    host.failGet(kTimerClass, L"RetryInterval", E_FAIL);
    for (const Timer& timer : timers()) EXPECT_EQ(timer.get(value), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(scope.survivingTexts(), IsEmpty());
}

// ---- Failures

TEST_F(TimerGetTest, EnumerationFails) {
    host.failEnumeration(kTimerClass, E_ACCESSDENIED);
    expectFailure({"GetMpioTimersCounters::CreateInstanceEnum", 0x80070005});
}

TEST_F(TimerGetTest, NextFails) {
    host.failNext(kTimerClass, E_ACCESSDENIED);
    expectFailure({kNextPlace, 0x80070005});
}

TEST_F(TimerGetTest, ClassMissing) {
    host->removeClass(kWmi, kTimerClass);
    expectFailure({kNextPlace, kInvalidClass});
    host->setUnknownClassAtCreation(true);
    expectFailure({"GetMpioTimersCounters::CreateInstanceEnum", kInvalidClass});
}

TEST_F(TimerGetTest, NoInstance) {
    host->removeInstances(kWmi, kTimerClass);
    expectFailure({kNextPlace, kEnd});
}

TEST_F(TimerGetTest, AnyUnreadablePropertyFailsEveryGetter) {
    for (const Timer& unreadable : timers()) {
        SCOPED_TRACE(unreadable.name() + " cannot be read");
        host.failGet(kTimerClass, unreadable.property, E_ACCESSDENIED);
        expectFailure({"GetMpioTimersCounters::Get(" + unreadable.name() + ")", 0x80070005});
        host->clearFaults();
    }
}

TEST_F(TimerGetTest, TheFirstUnreadablePropertyEndsTheReading) {
    host->removeProperty(kWmi, kTimerClass, L"PathVerificationPeriod");
    host->removeProperty(kWmi, kTimerClass, L"RetryCount");
    expectFailure({"GetMpioTimersCounters::Get(PathVerificationPeriod)", kNotFound});
    EXPECT_EQ(countCalls(L"Get MPIO_TIMERS_COUNTERS.PDORemovePeriod"), 0u);
}

TEST_F(TimerGetTest, NoSession) {
    closeSession();
    expectFailure({"GetMpioTimersCounters::CreateInstanceEnum", kNoObject});
}

}  // namespace
}  // namespace quista::test

// MPIO's timers are written, one by one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/keys/timer_table.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kEnumPlace = "SetMpioTimersCounters:CreateInstanceEnum";
const std::string kNextPlace = "SetMpioTimersCounters::IEnumWbemClassObject::Next";

class TimerSetTest : public TimerTest {
  protected:
    /// Every setter fails, changes nothing and logs this line.
    void expectFailure(const LogLine& line) {
        remember();
        for (const Timer& timer : timers()) {
            SCOPED_TRACE(timer.name());
            EXPECT_EQ(timer.set(77), DSM_WMI_PARSING_ERROR);
            EXPECT_THAT(log.take(), ElementsAre(line));
        }
        EXPECT_TRUE(unchanged());
    }
};

TEST_F(TimerSetTest, EachSetterChangesItsOwnOnly) {
    for (const Timer& timer : timers()) {
        SCOPED_TRACE(timer.name());
        remember();
        EXPECT_EQ(timer.set(77), DSM_SUCCESS);
        EXPECT_TRUE(changedOnly(timer.declared(timer.value), timer.declared(77)));
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(TimerSetTest, WhatWasSetIsReadBack) {
    for (const Timer& timer : timers()) {
        for (const unsigned long value : {0ul, 1ul, 200ul}) {
            EXPECT_EQ(timer.set(value), DSM_SUCCESS);
            unsigned long read = 99;
            EXPECT_EQ(timer.get(read), DSM_SUCCESS);
            EXPECT_EQ(read, value) << timer.name();
        }
    }
}

TEST_F(TimerSetTest, ValuesHave32Bits) {
    EXPECT_EQ(DSMSetRetryInterval(0xFFFFFFFF), DSM_SUCCESS);
    EXPECT_TRUE(changedOnly(L"RetryInterval = 4;", L"RetryInterval = 4294967295;"));
}

TEST_F(TimerSetTest, PathVerifyEnabled_TakesAnyByte) {
    EXPECT_EQ(DSMSetPathVerifyEnabled(255), DSM_SUCCESS);
    EXPECT_TRUE(changedOnly(L"PathVerifyEnabled = 1;", L"PathVerifyEnabled = 255;"));
}

TEST_F(TimerSetTest, ValueIsASignedNumberUnderItsOwnType) {
    host->clearTrace();
    for (const Timer& timer : timers()) EXPECT_EQ(timer.set(5), DSM_SUCCESS);
    std::size_t puts = 0;
    for (const simulator::CallRecord& call : host->trace()) {
        if (call.method != L"Put") continue;
        EXPECT_EQ(call.valueType, VT_I4);
        EXPECT_EQ(call.cimType, 0);
        ++puts;
    }
    EXPECT_EQ(puts, 5u);
}

TEST_F(TimerSetTest, TheWholeInstanceIsWrittenBack) {
    for (const Timer& timer : timers()) {
        host->clearTrace();
        EXPECT_EQ(timer.set(5), DSM_SUCCESS);
        EXPECT_THAT(
            callsWithProperties(),
            ElementsAre(L"CreateInstanceEnum MPIO_TIMERS_COUNTERS", L"Next MPIO_TIMERS_COUNTERS",
                        std::wstring(L"Put MPIO_TIMERS_COUNTERS.") + timer.property,
                        L"PutInstance MPIO_TIMERS_COUNTERS"));
    }
}

TEST_F(TimerSetTest, OnlyTheFirstInstanceIsWritten) {
    host.add(timerInstance(L"another"));
    remember();
    EXPECT_EQ(DSMSetRetryCount(5), DSM_SUCCESS);
    EXPECT_TRUE(changedOnly(L"RetryCount = 13;", L"RetryCount = 5;"));
}

TEST_F(TimerSetTest, NothingIsKept) {
    DSMSetRetryCount(1);
    const AllocationScope scope;
    const LiveObjectsCheck live(host);
    for (const Timer& timer : timers()) EXPECT_EQ(timer.set(1), DSM_SUCCESS);
    failPutInstance(kTimerClass, 0x80041001);
    for (const Timer& timer : timers()) EXPECT_EQ(timer.set(1), DSM_WMI_PARSING_ERROR);
    host->clearFaults();
    EXPECT_THAT(scope.survivingTexts(), IsEmpty());
}

// ---- Failures

TEST_F(TimerSetTest, EnumerationFails) {
    host.failEnumeration(kTimerClass, E_ACCESSDENIED);
    expectFailure({kEnumPlace, 0x80070005});
}

TEST_F(TimerSetTest, NextFails) {
    host.failNext(kTimerClass, E_ACCESSDENIED);
    expectFailure({kNextPlace, 0x80070005});
}

TEST_F(TimerSetTest, ClassMissing) {
    host->removeClass(kWmi, kTimerClass);
    expectFailure({kNextPlace, kInvalidClass});
    host->setUnknownClassAtCreation(true);
    expectFailure({kEnumPlace, kInvalidClass});
}

TEST_F(TimerSetTest, NoInstance) {
    host->removeInstances(kWmi, kTimerClass);
    expectFailure({kNextPlace, kEnd});
}

TEST_F(TimerSetTest, AFailedPutConcernsItsOwnSetterOnly) {
    for (const Timer& refused : timers()) {
        SCOPED_TRACE(refused.name() + " cannot be put");
        host.failPut(kTimerClass, refused.property, E_ACCESSDENIED);
        for (const Timer& timer : timers()) {
            const bool fails = &timer == &refused;
            EXPECT_EQ(timer.set(7), fails ? DSM_WMI_PARSING_ERROR : DSM_SUCCESS) << timer.name();
            if (fails) {
                EXPECT_THAT(log.take(),
                            ElementsAre(LogLine{
                                "SetMpioTimersCounters::Put(" + refused.name() + ")", 0x80070005}));
            } else {
                EXPECT_THAT(log.lines(), IsEmpty());
            }
        }
        host->clearFaults();
    }
}

TEST_F(TimerSetTest, AFailedPutWritesNothing) {
    host->removeProperty(kWmi, kTimerClass, L"RetryCount");
    remember();
    EXPECT_EQ(DSMSetRetryCount(5), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"SetMpioTimersCounters::Put(RetryCount)", kNotFound}));
    EXPECT_EQ(countCalls(L"PutInstance MPIO_TIMERS_COUNTERS"), 0u);
    EXPECT_TRUE(unchanged());
}

// Kept: the place is not formatted, and its line break is part of it.
TEST_F(TimerSetTest, PutInstanceFails_PlaceIsUnformatted) {
    const std::string place = "SetMpioTimersCounters:PutInstance() failed: %s\r\n";
    failPutInstance(kTimerClass, 0x80041003);
    expectFailure({place, 0x80041003});
    host->clearFaults();
    failPutInstance(kTimerClass, 0xE0000008);
    expectFailure({place, 0xE0000008});
    host->clearFaults();
    failPutInstance(kTimerClass, 0x40004);
    expectFailure({place, 0x40004});
}

TEST_F(TimerSetTest, NoSession) {
    closeSession();
    for (const Timer& timer : timers()) EXPECT_EQ(timer.set(1), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), testing::Each(LogLine{kEnumPlace, kNoObject}));
    EXPECT_EQ(log.lines().size(), 5u);
}

}  // namespace
}  // namespace quista::test

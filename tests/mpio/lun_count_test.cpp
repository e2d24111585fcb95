// DSMGetNumberMpioLUNs: the count comes from the first instance that can be read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/mpio_test.h"
#include "tests/mpio/values.h"
#include "tests/support/debug_output.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNext = "ParseDisksInfo: IEnumWbemClassObject::Next";
constexpr const char* kRead = "DSMGetNumberMpioLUNs::Get(NumberDisks)";
constexpr const char* kEnumerate = "DSMGetNumberMpioLUNs:CreateInstanceEnum(DSM_DISKS)";
constexpr const wchar_t* kUnreadable = L"ParseDisksInfo: can't get NumberDisks.\n";

class LunCountTest : public MpioTest {
  protected:
    unsigned long* count() const { return buffer_.as<unsigned long>(); }
    bool countUntouched() const { return buffer_.untouched(); }

    DebugOutputCapture debugger;

  private:
    GuardedBuffer buffer_{sizeof(unsigned long)};
};

TEST_F(LunCountTest, CountIsThePropertyNotTheArray) {
    host.add(diskInfo({drive(L"s1")}).number(L"NumberDrives", 7));
    openSession();
    const LiveObjectsCheck live(host);
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_SUCCESS);
    EXPECT_EQ(*count(), 7u);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(debugger.texts(), IsEmpty());
    EXPECT_THAT(calls(), ElementsAre(L"CreateInstanceEnum MPIO_DISK_INFO", L"Next MPIO_DISK_INFO",
                                     L"Get MPIO_DISK_INFO.NumberDrives"));
}

TEST_F(LunCountTest, CountHas32Bits) {
    host.add(diskInfo({}).number(L"NumberDrives", 0xFFFFFFFF));
    openSession();
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_SUCCESS);
    EXPECT_EQ(*count(), 0xFFFFFFFFu);
}

TEST_F(LunCountTest, CountWithoutValueIsZero) {
    host.add(diskInfo({}).null(L"NumberDrives"));
    openSession();
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_SUCCESS);
    EXPECT_EQ(*count(), 0u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LunCountTest, FirstInstanceCounts) {
    host.add(diskInfo({}, L"first").number(L"NumberDrives", 4));
    host.add(diskInfo({}, L"second").number(L"NumberDrives", 5));
    openSession();
    const LiveObjectsCheck live(host);
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_SUCCESS);
    EXPECT_EQ(*count(), 4u);
    EXPECT_EQ(countCalls(L"Next MPIO_DISK_INFO"), 1u);
}

TEST_F(LunCountTest, UnreadableInstanceIsPassedOver) {
    host.add(diskInfo({}, L"first").number(L"NumberDrives", 4));
    host.add(diskInfo({}, L"second").number(L"NumberDrives", 5));
    openSession();
    host.failGet(kDiskClass, L"NumberDrives", E_FAIL, 1, 1);
    const LiveObjectsCheck live(host);
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_SUCCESS);
    EXPECT_EQ(*count(), 5u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kRead, 0x80004005}));
    EXPECT_THAT(debugger.texts(), ElementsAre(kUnreadable));
}

TEST_F(LunCountTest, NoReadableInstanceIsAParsingError) {
    host.add(diskInfo({}, L"first"));
    host.add(diskInfo({}, L"second"));
    openSession();
    host->removeProperty(kWmi, kDiskClass, L"NumberDrives");
    const LiveObjectsCheck live(host);
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_WMI_PARSING_ERROR);
    EXPECT_TRUE(countUntouched());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kRead, kNotFound}, LogLine{kRead, kNotFound},
                                         LogLine{kNext, kEnd}));
    EXPECT_THAT(debugger.texts(), ElementsAre(kUnreadable, kUnreadable));
}

TEST_F(LunCountTest, NoInstanceIsAParsingError) {
    openSession();
    const LiveObjectsCheck live(host);
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_WMI_PARSING_ERROR);
    EXPECT_TRUE(countUntouched());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kNext, kEnd}));
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(LunCountTest, InstancesOfSubclassesDoNotCount) {
    host.loadText(L"class Derived_DISK_INFO : MPIO_DISK_INFO {};");
    host.add(
        MofObject(L"Derived_DISK_INFO").text(L"InstanceName", L"d").number(L"NumberDrives", 3));
    openSession();
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_WMI_PARSING_ERROR);
    EXPECT_TRUE(countUntouched());
}

TEST_F(LunCountTest, FailedEnumerationIsAWmiFailure) {
    host.add(diskInfo({}));
    openSession();
    host.failEnumeration(kDiskClass, E_ACCESSDENIED);
    const LiveObjectsCheck live(host);
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_WMI_FAILURE);
    EXPECT_TRUE(countUntouched());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kEnumerate, 0x80070005}));
    EXPECT_THAT(debugger.texts(), ElementsAre(L"ParseDisksInfo: CreateInstanceEnum(DSM_DISKS).\n"));
}

TEST_F(LunCountTest, FailedNextIsAParsingError) {
    host.add(diskInfo({}));
    openSession();
    host.failNext(kDiskClass, E_FAIL);
    const LiveObjectsCheck live(host);
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_WMI_PARSING_ERROR);
    EXPECT_TRUE(countUntouched());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kNext, 0x80004005}));
    EXPECT_EQ(countCalls(L"Next MPIO_DISK_INFO"), 1u);
}

TEST_F(LunCountTest, MissingClassIsReportedByNext) {
    openSession();
    host->removeClass(kWmi, kDiskClass);
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kNext, kInvalidClass}));
}

TEST_F(LunCountTest, MissingClassIsReportedAtOnce) {
    openSession();
    host->removeClass(kWmi, kDiskClass);
    host->setUnknownClassAtCreation(true);
    EXPECT_EQ(DSMGetNumberMpioLUNs(count()), DSM_WMI_FAILURE);
    EXPECT_TRUE(countUntouched());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kEnumerate, kInvalidClass}));
}

}  // namespace
}  // namespace quista::test

// DSMGetAllLunsEx: which instance and which drives of it end up in the caller's record.
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
constexpr const char* kDrives = "ParseDisksInfo::Get(LunInfo)";
constexpr const char* kSerialNumber = "ParseLunInfo::Get(SerialNumber)";
constexpr const char* kPaths = "ParseLunInfo::Get(NumberPaths)";
const LogLine kFailed{"DSMGetAllLuns", DSM_WMI_PARSING_ERROR};
constexpr const wchar_t* kFailedText = L"DSMGetAllLuns: failed to get disks info from WMI/DSM.\n";
constexpr const wchar_t* kNoDrivesText = L"ParseDisksInfo: IWbemClassObject::Get(LunInfo).\n";

class DiskListTest : public MpioTest {
  protected:
    /// Calls that read one drive of the list.
    static void appendDriveReads(std::vector<std::wstring>& calls) {
        for (const wchar_t* property : {L"DsmName", L"SerialNumber", L"NumberPaths"}) {
            calls.push_back(std::wstring(L"Get MPIO_DRIVE_INFO.") + property);
        }
    }

    DebugOutputCapture debugger;
};

TEST_F(DiskListTest, DisksOfAllDsmsAreListedInOrder) {
    host.add(diskInfo({drive(L"s-1", L"Data KORVA DSM", 4), drive(L"s-2", L"Microsoft DSM", 2),
                       drive(L"s-3", L"", 0)}));
    ASSERT_EQ(openSession(), DSM_SUCCESS);
    const LiveObjectsCheck live(host);
    const DiskRecord record(3);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_EQ(record.get()->NumberDrives, 3u);
    EXPECT_TRUE(record.reservedUntouched());
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-1");
    EXPECT_STREQ(record.drive(0).DsmName, L"Data KORVA DSM");
    EXPECT_EQ(record.drive(0).NumberPaths, 4u);
    EXPECT_STREQ(record.drive(1).SerialNumber, L"s-2");
    EXPECT_STREQ(record.drive(1).DsmName, L"Microsoft DSM");
    EXPECT_EQ(record.drive(1).NumberPaths, 2u);
    EXPECT_STREQ(record.drive(2).SerialNumber, L"s-3");
    EXPECT_STREQ(record.drive(2).DsmName, L"");
    EXPECT_EQ(record.drive(2).NumberPaths, 0u);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(DiskListTest, ReadsComeInOrder) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2")}));
    openSession();
    const DiskRecord record(2);
    DSMGetAllLunsEx(record.get());
    std::vector<std::wstring> expected{L"CreateInstanceEnum MPIO_DISK_INFO", L"Next MPIO_DISK_INFO",
                                       L"Get MPIO_DISK_INFO.NumberDrives",
                                       L"Get MPIO_DISK_INFO.DriveInfo"};
    appendDriveReads(expected);
    appendDriveReads(expected);
    EXPECT_EQ(calls(), expected);
}

TEST_F(DiskListTest, CountIsThePropertyNotTheArray) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2")}).number(L"NumberDrives", 4));
    openSession();
    const DiskRecord record(4);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_EQ(record.get()->NumberDrives, 4u);
    EXPECT_STREQ(record.drive(1).SerialNumber, L"s-2");
    EXPECT_TRUE(record.untouchedFrom(2));
}

TEST_F(DiskListTest, LargestCountAsksForNoMoreMemoryThanTheDrives) {
    host.add(diskInfo({drive(L"s-1")}).number(L"NumberDrives", 0xFFFFFFFF));
    openSession();
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_EQ(record.get()->NumberDrives, 0xFFFFFFFFu);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-1");
}

TEST_F(DiskListTest, OnlyFirstReadableInstanceIsUsed) {
    host.add(diskInfo({drive(L"s-1")}, L"first"));
    host.add(diskInfo({drive(L"s-2"), drive(L"s-3")}, L"second"));
    openSession();
    const LiveObjectsCheck live(host);
    const DiskRecord record(2);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_EQ(record.get()->NumberDrives, 1u);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-1");
    EXPECT_TRUE(record.untouchedFrom(1));
    EXPECT_EQ(countCalls(L"Next MPIO_DISK_INFO"), 1u);
}

TEST_F(DiskListTest, InstanceWithoutCountIsPassedOver) {
    host.add(diskInfo({drive(L"s-1")}, L"first"));
    host.add(diskInfo({drive(L"s-2")}, L"second"));
    openSession();
    host.failGet(kDiskClass, L"NumberDrives", E_FAIL, 1, 1);
    const LiveObjectsCheck live(host);
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-2");
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"ParseDisksInfo::Get(NumberDisks)", 0x80004005}));
    EXPECT_THAT(debugger.texts(), ElementsAre(L"ParseDisksInfo: can't get NumberDisks.\n"));
    EXPECT_EQ(countCalls(L"Get MPIO_DISK_INFO.DriveInfo"), 1u);
}

TEST_F(DiskListTest, InstanceWithoutDrivesIsPassedOverAndKept) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2")}, L"first"));
    host.add(diskInfo({drive(L"s-3")}, L"second"));
    openSession();
    host.failGet(kDiskClass, L"DriveInfo", E_FAIL, 1, 1);
    const LiveObjectsCheck live(host, {.objects = 1});
    const DiskRecord record(2);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_EQ(record.get()->NumberDrives, 1u);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-3");
    EXPECT_TRUE(record.untouchedFrom(1));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kDrives, 0x80004005}));
    EXPECT_THAT(debugger.texts(), ElementsAre(kNoDrivesText));
}

TEST_F(DiskListTest, CountOfAnInstanceWithoutDrivesStays) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2")}));
    openSession();
    host->removeProperty(kWmi, kDiskClass, L"DriveInfo");
    const LiveObjectsCheck live(host, {.objects = 1});
    const DiskRecord record(2);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(record.get()->NumberDrives, 2u);
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{kDrives, kNotFound}, LogLine{kNext, kEnd}, kFailed));
    EXPECT_THAT(debugger.texts(), ElementsAre(kNoDrivesText, kFailedText));
}

TEST_F(DiskListTest, NoInstanceIsAParsingError) {
    openSession();
    const LiveObjectsCheck live(host);
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_TRUE(record.untouched());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kNext, kEnd}, kFailed));
    EXPECT_THAT(debugger.texts(), ElementsAre(kFailedText));
}

TEST_F(DiskListTest, FailedEnumerationIsAWmiFailureLoggedAsParsingError) {
    host.add(diskInfo({drive(L"s-1")}));
    openSession();
    host.failEnumeration(kDiskClass, E_ACCESSDENIED);
    const LiveObjectsCheck live(host);
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_FAILURE);
    EXPECT_TRUE(record.untouched());
    EXPECT_THAT(
        log.lines(),
        ElementsAre(LogLine{"ParseDisksInfo:CreateInstanceEnum(DSM_DISKS)", 0x80070005}, kFailed));
    EXPECT_THAT(debugger.texts(),
                ElementsAre(L"ParseDisksInfo::CreateInstanceEnum(DSM_DISKS).\n", kFailedText));
}

TEST_F(DiskListTest, MissingClassIsReportedByNext) {
    openSession();
    host->removeClass(kWmi, kDiskClass);
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kNext, kInvalidClass}, kFailed));
}

TEST_F(DiskListTest, MissingClassIsReportedAtOnce) {
    openSession();
    host->removeClass(kWmi, kDiskClass);
    host->setUnknownClassAtCreation(true);
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_FAILURE);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParseDisksInfo:CreateInstanceEnum(DSM_DISKS)", kInvalidClass},
                            kFailed));
}

// ---- The array

TEST_F(DiskListTest, EmptyArrayIsAParsingError) {
    host.add(diskInfo({}).number(L"NumberDrives", 2));
    openSession();
    const LiveObjectsCheck live(host);
    const DiskRecord record(2);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(record.get()->NumberDrives, 2u);
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(), ElementsAre(kFailed));
}

TEST_F(DiskListTest, FirstUnreadableDriveEndsTheList) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2"), drive(L"s-3")}));
    openSession();
    host.failGet(kDriveClass, L"NumberPaths", E_FAIL, 2, 1);
    const LiveObjectsCheck live(host);
    const DiskRecord record(3);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(record.drive(0).NumberPaths, 2u);
    EXPECT_STREQ(record.drive(1).SerialNumber, L"s-2");
    EXPECT_TRUE(record.untouchedFrom(2));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kPaths, 0x80004005}, kFailed));
    EXPECT_EQ(countCalls(L"Get MPIO_DRIVE_INFO.DsmName"), 2u);
    EXPECT_EQ(countCalls(L"Next MPIO_DISK_INFO"), 1u);
}

TEST_F(DiskListTest, DrivesBeyondTheSessionsCountAreNotFetched) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2")}));
    openSession();
    host->removeInstances(kWmi, kDiskClass);
    host.add(diskInfo({drive(L"s-3"), drive(L"s-4"), drive(L"s-5"), drive(L"s-6")}));
    const LiveObjectsCheck live(host);
    const DiskRecord record(2);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_EQ(record.get()->NumberDrives, 4u);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-3");
    EXPECT_STREQ(record.drive(1).SerialNumber, L"s-4");
    EXPECT_EQ(countCalls(L"Get MPIO_DRIVE_INFO.SerialNumber"), 2u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DiskListTest, FewerDrivesThanTheSessionsCountAreAllListed) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2"), drive(L"s-3")}));
    openSession();
    host->removeInstances(kWmi, kDiskClass);
    host.add(diskInfo({drive(L"s-4")}));
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-4");
}

TEST_F(DiskListTest, SessionWithoutDrivesFetchesNone) {
    host.add(diskInfo({}));
    openSession();
    host->removeInstances(kWmi, kDiskClass);
    host.add(diskInfo({drive(L"s-1")}));
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(record.get()->NumberDrives, 1u);
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(), ElementsAre(kFailed));
}

TEST_F(DiskListTest, NullElementFailsTheDrivesFirstCheckedRead) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2"), drive(L"s-3")}));
    openSession();
    const Value drives = Value::ofProperty(kDiskClass, L"DriveInfo");
    const Value odd = Value::objects({elementOf(drives, 0), nullptr, elementOf(drives, 2)});
    host.replaceValue(kDiskClass, L"DriveInfo", odd);
    const LiveObjectsCheck live(host);
    const DiskRecord record(3);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-1");
    EXPECT_STREQ(record.drive(1).DsmName, L"Invalid Entry");
    EXPECT_TRUE(record.untouchedFrom(2));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kSerialNumber, kNoObject}, kFailed));
}

TEST_F(DiskListTest, ElementThatIsNoWmiObjectCountsAsNull) {
    host.add(diskInfo({drive(L"s-1")}));
    openSession();
    host.replaceValue(kDiskClass, L"DriveInfo", Value::objects({foreignObject()}));
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kSerialNumber, kNoObject}, kFailed));
}

TEST_F(DiskListTest, ArrayMayBeginAtAnyIndex) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2")}));
    openSession();
    const Value drives = Value::ofProperty(kDiskClass, L"DriveInfo");
    host.replaceValue(kDiskClass, L"DriveInfo",
                      Value::objects({elementOf(drives, 1), elementOf(drives, 0)}, 5));
    const DiskRecord record(2);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-2");
    EXPECT_STREQ(record.drive(1).SerialNumber, L"s-1");
}

// ---- Values that are no array of objects

TEST_F(DiskListTest, SingleObjectFillsTheFirstEntry) {
    host.add(diskInfo({drive(L"s-1"), drive(L"s-2")}));
    openSession();
    const Value drives = Value::ofProperty(kDiskClass, L"DriveInfo");
    host.replaceValue(kDiskClass, L"DriveInfo", Value::object(elementOf(drives, 1)));
    const LiveObjectsCheck live(host);
    const DiskRecord record(2);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_EQ(record.get()->NumberDrives, 2u);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-2");
    EXPECT_TRUE(record.untouchedFrom(1));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(DiskListTest, UnreadableSingleObjectEndsTheCall) {
    host.add(diskInfo({drive(L"s-1")}, L"first"));
    host.add(diskInfo({drive(L"s-2")}, L"second"));
    openSession();
    const Value drives = Value::ofProperty(kDiskClass, L"DriveInfo");
    host.replaceValue(kDiskClass, L"DriveInfo", Value::object(elementOf(drives, 0)));
    host.failGet(kDriveClass, L"SerialNumber", E_FAIL, 1, 1);
    const LiveObjectsCheck live(host);
    host->clearTrace();
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kSerialNumber, 0x80004005}, kFailed));
    EXPECT_EQ(countCalls(L"Next MPIO_DISK_INFO"), 1u);
}

/// A lone drive without an object behind it counts as one that could not be read.
class LoneDriveTest : public DiskListTest, public testing::WithParamInterface<bool> {};

TEST_P(LoneDriveTest, WithoutWmiObjectIsUnreadable) {
    host.add(diskInfo({drive(L"s-1")}, L"first"));
    host.add(diskInfo({drive(L"s-2")}, L"second"));
    openSession();
    host.replaceValue(kDiskClass, L"DriveInfo",
                      Value::object(GetParam() ? foreignObject() : nullptr), 1, 1);
    const LiveObjectsCheck live(host, {.objects = 1});
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_STREQ(record.drive(0).SerialNumber, L"s-2");
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kDrives, kNoObject}));
    EXPECT_THAT(debugger.texts(), ElementsAre(kNoDrivesText));
}

INSTANTIATE_TEST_SUITE_P(Kinds, LoneDriveTest, testing::Bool(), [](const auto& test) {
    return test.param ? "ForeignObject" : "NullObject";
});

TEST_F(DiskListTest, OtherTypesFillNothing) {
    host.add(diskInfo({drive(L"s-1")}, L"first"));
    host.add(diskInfo({drive(L"s-2")}, L"second"));
    openSession();
    std::vector<Value> values;
    values.push_back(Value());
    values.push_back(Value::null());
    values.push_back(Value::number(1));
    values.push_back(Value::text(L"s-1"));
    values.push_back(Value::array(VT_UI1, 4));
    values.push_back(Value::array(VT_I4, 4));
    values.push_back(Value::array(VT_BSTR, 4));
    values.push_back(Value::array(VT_DISPATCH, 4));
    values.push_back(Value::array(VT_VARIANT, 4));
    for (const Value& value : values) {
        SCOPED_TRACE(value.get().vt);
        host->clearFaults();
        host.replaceValue(kDiskClass, L"DriveInfo", value);
        host->clearTrace();
        const LiveObjectsCheck live(host);
        const DiskRecord record(1);
        EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
        EXPECT_EQ(record.get()->NumberDrives, 1u);
        EXPECT_TRUE(record.untouchedFrom(0));
        EXPECT_THAT(log.take(), ElementsAre(kFailed));
        EXPECT_EQ(countCalls(L"Next MPIO_DISK_INFO"), 1u) << "the instance was used";
    }
}

TEST_F(DiskListTest, DrivesWithoutValueFillNothing) {
    host.add(diskInfo({drive(L"s-1")}).null(L"DriveInfo"));
    openSession();
    const DiskRecord record(1);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_TRUE(record.untouchedFrom(0));
    EXPECT_THAT(log.lines(), ElementsAre(kFailed));
}

}  // namespace
}  // namespace quista::test

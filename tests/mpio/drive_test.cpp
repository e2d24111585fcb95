// One entry of the disk list: names, path count, and what is kept of their values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/mpio_test.h"
#include "tests/mpio/values.h"
#include "tests/support/process_census.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const LogLine kFailed{"DSMGetAllLuns", DSM_WMI_PARSING_ERROR};
const LogLine kNoSerialNumber{"ParseLunInfo::Get(SerialNumber)", kNotFound};

class DriveTest : public MpioTest {
  protected:
    DriveTest() {
        host.add(diskInfo({drive(L"")}));
        openSession();
    }

    /// Lists a host with this drive alone.
    unsigned long list(const MofObject& only) {
        host->removeInstances(kWmi, kDiskClass);
        host.add(diskInfo({only}));
        return DSMGetAllLunsEx(record.get());
    }
    /// Lists a host whose drive has another value for a property.
    unsigned long listWith(const std::wstring& property, const Value& value) {
        host.replaceValue(kDriveClass, property, value);
        return list(drive(L"serial", L"Data KORVA DSM", 3));
    }
    const _DSM_DRIVEINFO& entry() const { return record.drive(0); }

    DiskRecord record{1};
};

TEST_F(DriveTest, TextsAreBareAndTerminated) {
    EXPECT_EQ(list(drive(L"kvA7r2\"Q'm\\9", L"Data KORVA DSM", 4)), DSM_SUCCESS);
    EXPECT_STREQ(entry().SerialNumber, L"kvA7r2\"Q'm\\9");
    EXPECT_TRUE(record.untouchedBehind(entry().SerialNumber, 13));
    EXPECT_STREQ(entry().DsmName, L"Data KORVA DSM");
    EXPECT_TRUE(record.untouchedBehind(entry().DsmName, 15));
    EXPECT_EQ(entry().NumberPaths, 4u);
}

TEST_F(DriveTest, EmptyTextsAreEmpty) {
    EXPECT_EQ(list(drive(L"", L"")), DSM_SUCCESS);
    EXPECT_STREQ(entry().SerialNumber, L"");
    EXPECT_STREQ(entry().DsmName, L"");
}

// ---- Texts longer than their fields

TEST_F(DriveTest, TextsThatFitWithTerminatorAreWhole) {
    const std::wstring serial(127, L's');
    const std::wstring name(63, L'n');
    EXPECT_EQ(list(drive(serial, name, 5)), DSM_SUCCESS);
    EXPECT_EQ(entry().SerialNumber, serial);
    EXPECT_EQ(entry().DsmName, name);
    EXPECT_EQ(entry().NumberPaths, 5u);
}

TEST_F(DriveTest, LongerTextsAreCutToATerminator) {
    for (const std::size_t surplus : {1u, 2u, 500u}) {
        EXPECT_EQ(list(drive(std::wstring(127, L's') + std::wstring(surplus, L't'),
                             std::wstring(63, L'n') + std::wstring(surplus, L'm'), 5)),
                  DSM_SUCCESS);
        EXPECT_EQ(entry().SerialNumber, std::wstring(127, L's'));
        EXPECT_EQ(entry().DsmName, std::wstring(63, L'n'));
        EXPECT_EQ(entry().NumberPaths, 5u);
    }
}

// ---- DsmName

TEST_F(DriveTest, UnreadableDsmNameIsAnInvalidEntry) {
    host.failGet(kDriveClass, L"DsmName", E_FAIL);
    EXPECT_EQ(list(drive(L"serial")), DSM_SUCCESS);
    EXPECT_STREQ(entry().DsmName, L"Invalid Entry");
    EXPECT_STREQ(entry().SerialNumber, L"serial");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DriveTest, DsmNameWithoutValueIsAnInvalidEntry) {
    EXPECT_EQ(list(drive(L"serial").null(L"DsmName")), DSM_SUCCESS);
    EXPECT_STREQ(entry().DsmName, L"Invalid Entry");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DriveTest, DsmNameThatIsNoTextIsAnInvalidEntry) {
    EXPECT_EQ(listWith(L"DsmName", Value::number(3)), DSM_SUCCESS);
    EXPECT_STREQ(entry().DsmName, L"Invalid Entry");
}

TEST_F(DriveTest, DsmNameMayBeACharacterArray) {
    EXPECT_EQ(listWith(L"DsmName", Value::characters({L'D', L'S', L'M', 0, 0})), DSM_SUCCESS);
    EXPECT_STREQ(entry().DsmName, L"DSM");
}

// ---- SerialNumber

TEST_F(DriveTest, UnreadableSerialNumberIsAParsingError) {
    host->removeProperty(kWmi, kDriveClass, L"SerialNumber");
    EXPECT_EQ(list(MofObject(kDriveClass).text(L"DsmName", L"dsm").number(L"NumberPaths", 2)),
              DSM_WMI_PARSING_ERROR);
    EXPECT_STREQ(entry().DsmName, L"dsm");
    EXPECT_TRUE(record.untouchedBehind(entry().SerialNumber, 0));
    EXPECT_THAT(log.lines(), ElementsAre(kNoSerialNumber, kFailed));
    EXPECT_EQ(countCalls(L"Get MPIO_DRIVE_INFO.NumberPaths"), 0u);
}

TEST_F(DriveTest, SerialNumberWithoutValueIsAnInvalidEntry) {
    EXPECT_EQ(list(drive(L"").null(L"SerialNumber")), DSM_SUCCESS);
    EXPECT_STREQ(entry().SerialNumber, L"Invalid Entry");
}

TEST_F(DriveTest, SerialNumberThatIsNoTextIsAnInvalidEntry) {
    EXPECT_EQ(listWith(L"SerialNumber", Value::array(VT_UI1, 8)), DSM_SUCCESS);
    EXPECT_STREQ(entry().SerialNumber, L"Invalid Entry");
}

TEST_F(DriveTest, SerialNumberMayBeACharacterArray) {
    EXPECT_EQ(listWith(L"SerialNumber", Value::characters({L'A', 1, 0})), DSM_SUCCESS);
    EXPECT_STREQ(entry().SerialNumber, L"41:01");
}

// ---- NumberPaths

TEST_F(DriveTest, UnreadablePathCountIsAParsingError) {
    host->removeProperty(kWmi, kDriveClass, L"NumberPaths");
    EXPECT_EQ(list(MofObject(kDriveClass).text(L"DsmName", L"dsm").text(L"SerialNumber", L"s")),
              DSM_WMI_PARSING_ERROR);
    EXPECT_STREQ(entry().SerialNumber, L"s");
    EXPECT_TRUE(record.untouchedFrom(1));
    EXPECT_EQ(entry().NumberPaths, 0xA5A5A5A5u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParseLunInfo::Get(NumberPaths)", kNotFound}, kFailed));
}

TEST_F(DriveTest, PathCountHas32Bits) {
    EXPECT_EQ(list(drive(L"s").number(L"NumberPaths", 0xFFFFFFFF)), DSM_SUCCESS);
    EXPECT_EQ(entry().NumberPaths, 0xFFFFFFFFu);
}

TEST_F(DriveTest, PathCountWithoutValueIsZero) {
    EXPECT_EQ(list(drive(L"s").null(L"NumberPaths")), DSM_SUCCESS);
    EXPECT_EQ(entry().NumberPaths, 0u);
}

TEST_F(DriveTest, PathCountIsTheRawValue) {
    EXPECT_EQ(listWith(L"NumberPaths", Value::byte(200)), DSM_SUCCESS);
    EXPECT_EQ(entry().NumberPaths, 200u);
}

// ---- What is kept

TEST_F(DriveTest, DsmNamesValueIsKeptAndNothingElse) {
    list(drive(L"serial", L"the DSM"));  // what the system keeps once and for all
    const AllocationScope scope;
    const LiveObjectsCheck live(host);
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
    EXPECT_THAT(scope.survivingTexts(), ElementsAre(L"the DSM"));
    EXPECT_EQ(scope.survivors().size(), 1u);
}

TEST_F(DriveTest, DsmNamesValueIsKeptWhenTheDriveFails) {
    host.failGet(kDriveClass, L"NumberPaths", E_FAIL);
    list(drive(L"serial", L"the DSM"));
    const AllocationScope scope;
    EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(scope.survivingTexts(), ElementsAre(L"the DSM"));
}

TEST_F(DriveTest, BothTextsAreKept) {
    const std::wstring serial = L"a serial number like no other";
    const std::wstring name = L"a DSM name like no other";
    list(drive(serial, name));
    const std::size_t serials = countHeapTexts(serial);
    const std::size_t names = countHeapTexts(name);
    DSMGetAllLunsEx(record.get());
    DSMGetAllLunsEx(record.get());
    EXPECT_EQ(countHeapTexts(serial), serials + 2);
    EXPECT_EQ(countHeapTexts(name), names + 2);
}

}  // namespace
}  // namespace quista::test

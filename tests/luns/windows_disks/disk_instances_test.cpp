// What is read from one Windows disk, and what the debugger hears of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/windows_disks/windows_disks_test.h"
#include "tests/mpio/values.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

const wchar_t* const kConverting = L"Trying to convert size";
const wchar_t* const kDone = L"All done";
const wchar_t* const kReturnedError = L"Returned error!!";

class DiskDriveTest : public WindowsDisksTest {
  protected:
    DiskMap map;
    DebugOutputCapture debugger;

    /// Reads the map again and gives its only disk under the key.
    Disk only(const std::wstring& key) {
        map.clear();
        debugger.clear();
        EXPECT_EQ(map.readDrives(), DSM_SUCCESS);
        EXPECT_EQ(map.count, 1);
        EXPECT_EQ(map.disks().size(), 1u);
        EXPECT_TRUE(map.disks().contains(key));
        return map.disks()[key];
    }
};

TEST_F(DiskDriveTest, IdentifierIndexAndSizeAreReadInOrder) {
    openWith({drive(3, L"SCSI\\DISK&VEN_KORVA\\1&2", 1099511627776)});
    debugger.clear();
    EXPECT_EQ(map.readDrives(), DSM_SUCCESS);
    EXPECT_THAT(map.disks(),
                ElementsAre(Pair(L"SCSI\\DISK&VEN_KORVA\\1&2", Disk{3, 1099511627776})));
    EXPECT_THAT(calls(L"Get"),
                ElementsAre("Get Win32_DiskDrive.PNPDeviceID", "Get Win32_DiskDrive.Index",
                            "Get Win32_DiskDrive.Size"));
    EXPECT_THAT(debugger.texts(), ElementsAre(kConverting, kDone));
    EXPECT_EQ(log.lines(), endOf(kDriveClass));
}

TEST_F(DiskDriveTest, KeysAreTakenAsTheyAre) {
    openWith({drive(1, L"  mIxEd  ", 1), drive(2, L"MIXED", 2), drive(3, L"mixed", 3)});
    map.readDrives();
    EXPECT_THAT(map.disks(), ElementsAre(Pair(L"  mIxEd  ", Disk{1, 1}), Pair(L"MIXED", Disk{2, 2}),
                                         Pair(L"mixed", Disk{3, 3})));
}

TEST_F(DiskDriveTest, DriveWithoutIndexGoesUnderTheEmptyKey) {
    openWith({drive(0xFFFFFFFF, L"unmapped", 5)});
    EXPECT_EQ(only(L""), (Disk{-1, 0}));
    EXPECT_THAT(debugger.texts(), ElementsAre(kConverting));
    for (const LONG index : {-1L, -2L, static_cast<LONG>(0x80000000)}) {
        host->clearFaults();
        host.replaceValue(kDriveClass, L"Index", Value::number(index));
        EXPECT_EQ(only(L""), (Disk{-1, 0})) << index;
    }
}

TEST_F(DiskDriveTest, IndexWithoutValueIsZero) {
    openWith({drive(9, L"id", 5).null(L"Index")});
    EXPECT_EQ(only(L"id"), (Disk{0, 5}));
}

TEST_F(DiskDriveTest, IndexMayReachTheLargestPositiveNumber) {
    openWith({drive(0x7FFFFFFF, L"id", 5)});
    EXPECT_EQ(only(L"id"), (Disk{0x7FFFFFFF, 5}));
}

TEST_F(DiskDriveTest, SizeWithoutValueIsZeroAndNotConverted) {
    openWith({drive(1, L"id", 5).null(L"Size")});
    EXPECT_EQ(only(L"id"), (Disk{1, 0}));
    EXPECT_THAT(debugger.texts(), ElementsAre(kDone));
    host.replaceValue(kDriveClass, L"Size", Value::number(77));
    EXPECT_EQ(only(L"id"), (Disk{1, 0})) << "a size that is no text counts as none";
    EXPECT_THAT(debugger.texts(), ElementsAre(kDone));
}

TEST_F(DiskDriveTest, SizeIsConvertedFromText) {
    openWith({drive(1, L"id", 5)});
    const std::pair<const wchar_t*, long long> sizes[] = {
        {L"0", 0},    {L"", 0},    {L"  42", 42},
        {L"-7", -7},  {L"+8", 8},  {L"12 bytes", 12},
        {L"0x10", 0}, {L"abc", 0}, {L"9223372036854775807", 9223372036854775807}};
    for (const auto& [text, size] : sizes) {
        host->clearFaults();
        host.replaceValue(kDriveClass, L"Size", Value::text(text));
        EXPECT_EQ(only(L"id"), (Disk{1, size})) << testing::PrintToString(text);
        EXPECT_THAT(debugger.texts(), ElementsAre(kConverting, kDone));
    }
}

TEST_F(DiskDriveTest, DriveWithoutIdentifierGoesUnderTheEmptyKey) {
    openWith({drive(1, L"id", 5).null(L"PNPDeviceID")});
    EXPECT_EQ(only(L""), (Disk{-1, 0}));
    EXPECT_THAT(debugger.texts(), ElementsAre(kConverting));
    host.replaceValue(kDriveClass, L"PNPDeviceID", Value::number(3));
    EXPECT_EQ(only(L""), (Disk{-1, 0})) << "an identifier that is no text counts as none";
}

TEST_F(DiskDriveTest, EmptyIdentifierIsAnIdentifier) {
    openWith({drive(1, L"", 5)});
    EXPECT_EQ(only(L""), (Disk{1, 5}));
}

TEST_F(DiskDriveTest, LongIdentifierIsKeptWhole) {
    const std::wstring identifier(5000, L'i');
    openWith({drive(1, identifier, 5)});
    EXPECT_EQ(only(identifier), (Disk{1, 5}));
}

TEST_F(DiskDriveTest, DebuggerHearsNothingOfTheEnd) {
    openSession();
    debugger.clear();
    map.readDrives();
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

class PhysicalMediaTest : public WindowsDisksTest {
  protected:
    DiskMap map;
    DebugOutputCapture debugger;

    long numberOf(const Value& tag) {
        map.clear();
        host->clearFaults();
        host.replaceValue(kMediaClass, L"Tag", tag);
        EXPECT_EQ(map.readMedia(), DSM_SUCCESS);
        EXPECT_EQ(map.count, 1);
        return map.disks()[L"serial"].number;
    }
};

TEST_F(PhysicalMediaTest, SerialNumberAndTagAreReadInOrder) {
    openWith({medium(L"serial", drivePath(3))});
    debugger.clear();
    EXPECT_EQ(map.readMedia(), DSM_SUCCESS);
    EXPECT_THAT(map.disks(), ElementsAre(Pair(L"serial", Disk{3, 0})));
    EXPECT_THAT(calls(L"Get"),
                ElementsAre("Get Win32_PhysicalMedia.SerialNumber", "Get Win32_PhysicalMedia.Tag"));
    EXPECT_THAT(debugger.texts(), ElementsAre(kReturnedError)) << "also at the normal end";
}

TEST_F(PhysicalMediaTest, DebuggerHearsOfEveryEndButARefusedQuery) {
    openWith({medium(L"serial", drivePath(3))});
    host.failNext(kMediaClass, asResult(kNotFound));
    debugger.clear();
    map.readMedia();
    EXPECT_THAT(debugger.texts(), ElementsAre(kReturnedError));
    host.failQuery(kMediaClass, E_FAIL);
    debugger.clear();
    map.readMedia();
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(PhysicalMediaTest, KeysAreTakenAsTheyAre) {
    openWith(
        {medium(L"  aB ", drivePath(1)), medium(L"AB", drivePath(2)), medium(L"ab", drivePath(3))});
    map.readMedia();
    EXPECT_THAT(map.disks(), ElementsAre(Pair(L"  aB ", Disk{1, 0}), Pair(L"AB", Disk{2, 0}),
                                         Pair(L"ab", Disk{3, 0})));
}

TEST_F(PhysicalMediaTest, MediaWithoutSerialNumberShareTheEmptyKey) {
    openWith({medium(L"", drivePath(1)), medium(L"x", drivePath(2)).null(L"SerialNumber")});
    EXPECT_EQ(map.readMedia(), DSM_SUCCESS);
    EXPECT_EQ(map.count, 2);
    EXPECT_THAT(map.disks(), ElementsAre(Pair(L"", Disk{2, 0})));
}

TEST_F(PhysicalMediaTest, SerialNumberThatIsNoTextIsEmpty) {
    openWith({medium(L"x", drivePath(4))});
    host.replaceValue(kMediaClass, L"SerialNumber", Value::number(12));
    map.readMedia();
    EXPECT_THAT(map.disks(), ElementsAre(Pair(L"", Disk{4, 0})));
}

TEST_F(PhysicalMediaTest, NumberFollowsTheWordInTheTag) {
    openWith({medium(L"serial", L"tag")});
    const std::pair<const wchar_t*, long> tags[] = {
        {L"\\\\.\\PHYSICALDRIVE0", 0},
        {L"\\\\.\\PHYSICALDRIVE17", 17},
        {L"PHYSICALDRIVE5", 5},
        {L"PHYSICALDRIVE 6", 6},
        {L"PHYSICALDRIVE-2", -2},
        {L"PHYSICALDRIVE+3", 3},
        {L"PHYSICALDRIVE007", 7},
        {L"PHYSICALDRIVE8rest", 8},
        {L"PHYSICALDRIVE0x10", 0},
        {L"PHYSICALDRIVE1PHYSICALDRIVE2", 1},
        // No digits.
        {L"PHYSICALDRIVE", 0},
        {L"PHYSICALDRIVEabc", 0},
        {L"PHYSICALDRIVEPHYSICALDRIVE2", 0},
        // Beyond what a number holds.
        {L"PHYSICALDRIVE2147483647", 2147483647},
        {L"PHYSICALDRIVE99999999999", 2147483647},
        {L"PHYSICALDRIVE-99999999999", -2147483647 - 1},
        // No such word.
        {L"\\\\.\\PhysicalDrive3", -1},
        {L"\\\\.\\CDROM0", -1},
        {L"PHYSICALDRIV", -1},
        {L"3", -1},
        {L"", -1},
    };
    for (const auto& [tag, number] : tags) {
        EXPECT_EQ(numberOf(Value::text(tag)), number) << testing::PrintToString(tag);
    }
}

TEST_F(PhysicalMediaTest, TagThatIsNoTextHasNoNumber) {
    openWith({medium(L"serial", L"tag")});
    EXPECT_EQ(numberOf(Value::null()), -1);
    EXPECT_EQ(numberOf(Value::number(3)), -1);
    EXPECT_EQ(numberOf(Value::characters({'P', 'H'})), -1);
}

TEST_F(PhysicalMediaTest, LongTextsAreKeptWhole) {
    const std::wstring serial(5000, L's');
    openWith({medium(serial, std::wstring(5000, L't') + L"PHYSICALDRIVE12")});
    map.readMedia();
    EXPECT_THAT(map.disks(), ElementsAre(Pair(serial, Disk{12, 0})));
}

}  // namespace
}  // namespace quista::test

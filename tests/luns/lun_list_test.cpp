// All LUNs as an array of records.
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/luns_test.h"
#include "tests/support/debug_output.h"
#include "tests/support/guarded_buffer.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kAllLuns = "ExecQuery SELECT * FROM KORVADSM_LUNINFO";

constexpr const char* kListNext = "ParseDisksInfoKORVA: IEnumWbemClassObject::Next";
constexpr const wchar_t* kListFailed =
    L"KORVADSMGetAllLuns: failed to get disks info from WMI/DSM.\n";
constexpr std::size_t kFirstEntry = 8;
constexpr std::size_t kEntrySize = 1136;

/// The caller's record with room for `luns` entries and not a byte more.
class DiskList {
  public:
    explicit DiskList(std::size_t luns) : buffer_(kFirstEntry + kEntrySize * luns) {}

    _KORVADSM_DISKS* get() const { return buffer_.as<_KORVADSM_DISKS>(); }
    unsigned long count() const { return get()->NumberDisks; }
    const _KORVADSM_LUN& at(std::size_t index) const { return get()->Disks[index]; }
    std::wstring serial(std::size_t index) const { return at(index).SerialNumber; }
    bool countUntouched() const { return buffer_.untouched(0, sizeof(unsigned long)); }
    bool entriesUntouchedFrom(std::size_t index) const {
        const std::size_t offset = kFirstEntry + kEntrySize * index;
        return buffer_.untouched(offset, buffer_.size() - offset);
    }

  private:
    GuardedBuffer buffer_;
};

class LunListTest : public LunsTest {};

TEST_F(LunListTest, EveryLunBecomesAnEntry) {
    openWith({lunWith(L"S1", {fibreChannelPath(1)}), lunWith(L"S2", {}).text(L"FilerName", L"f2")});
    const DiskList disks(2);
    const DebugOutputCapture debugger;
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 0u);
    EXPECT_EQ(disks.count(), 2u);
    EXPECT_STREQ(disks.at(0).FilerName, L"storage1");
    EXPECT_STREQ(disks.at(0).KORVAVersionString, L"KORVA Release 9.1.2");
    EXPECT_STREQ(disks.at(0).LunPath, L"\"/vol/vol1/lun1\"");
    EXPECT_STREQ(disks.at(0).SerialNumber, L"S1");
    EXPECT_EQ(disks.at(0).LunSize, 1099511627776u);
    EXPECT_EQ(disks.at(0).LunState, 0x00010203u);
    EXPECT_EQ(disks.at(0).CFMode, 1u);
    EXPECT_EQ(disks.at(0).LoadBalancePolicy, 3u);
    EXPECT_EQ(disks.at(0).KORVAVersion, 0x00090102u);
    EXPECT_EQ(disks.at(0).ReservationKey[7], 0x18u);
    EXPECT_EQ(disks.at(0).clusterType, 2u);
    EXPECT_EQ(disks.at(0).Reserved2[65], 0u) << "the whole leading part is copied";
    EXPECT_STREQ(disks.at(1).FilerName, L"f2");
    EXPECT_STREQ(disks.at(1).SerialNumber, L"S2");
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kListNext, 1}));
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(LunListTest, EntryIsTheLeadingPartOfTheDiskRecord) {
    openWith({lunWith(L"S1", {})});
    const DiskList disks(1);
    ASSERT_EQ(KORVADSMGetAllLunsEx(disks.get()), 0u);
    const ParsedDisk disk = parse(onlyLun().get());
    EXPECT_EQ(std::memcmp(&disks.at(0), disk.info.get(), kEntrySize), 0);
}

TEST_F(LunListTest, PathsAndInstanceNamesAreNotRead) {
    openWith({lunWith(L"S1", {fibreChannelPath(1)})});
    const DiskList disks(1);
    KORVADSMGetAllLunsEx(disks.get());
    EXPECT_THAT(queries(), ElementsAre(kAllLuns, "Next", "Next"));
    EXPECT_THAT(reads(),
                ElementsAre("LUN.NumberofPaths", "LUN.FilerName", "LUN.LunPath", "LUN.LunState",
                            "LUN.CFMode", "LUN.KORVAVersion", "LUN.KORVAVersionString",
                            "LUN.KorvaDSMLoadBalancePolicy", "LUN.LunSize", "LUN.SerialNumber",
                            "LUN.ReservationKey", "LUN.clusterType"));
}

TEST_F(LunListTest, NoLunsGive15) {
    openWith({});
    const DiskList disks(0);
    const DebugOutputCapture debugger;
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 15u);
    EXPECT_EQ(disks.count(), 0u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kListNext, 1}));
    EXPECT_THAT(debugger.texts(), ElementsAre(kListFailed));
}

TEST_F(LunListTest, RepeatedSerialNumberIsDropped) {
    openWith({namedLun(L"a", L"S1").text(L"FilerName", L"first"), namedLun(L"b", L"S2"),
              namedLun(L"c", L"S1").text(L"FilerName", L"second"), namedLun(L"d", L"S3")});
    const DiskList disks(4);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 0u);
    ASSERT_EQ(disks.count(), 3u);
    EXPECT_EQ(disks.serial(0), L"S1");
    EXPECT_STREQ(disks.at(0).FilerName, L"first");
    EXPECT_EQ(disks.serial(1), L"S2");
    EXPECT_EQ(disks.serial(2), L"S3");
    EXPECT_TRUE(disks.entriesUntouchedFrom(3));
}

TEST_F(LunListTest, SerialNumbersThatDifferInCaseAreTwo) {
    openWith({namedLun(L"a", L"s1"), namedLun(L"b", L"S1")});
    const DiskList disks(2);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 0u);
    EXPECT_EQ(disks.count(), 2u);
}

TEST_F(LunListTest, PlaceholdersAreAllKept) {
    openWith({namedLun(L"a", L"Invalid Entry"), namedLun(L"b", L"S1"),
              namedLun(L"c", L"").null(L"SerialNumber"), namedLun(L"d", L"Invalid Entry")});
    const DiskList disks(4);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 0u);
    ASSERT_EQ(disks.count(), 4u);
    EXPECT_EQ(disks.serial(0), L"Invalid Entry");
    EXPECT_EQ(disks.serial(2), L"Invalid Entry");
    EXPECT_EQ(disks.serial(3), L"Invalid Entry");
}

TEST_F(LunListTest, EmptySerialNumbersAreNoPlaceholders) {
    openWith({namedLun(L"a", L""), namedLun(L"b", L"")});
    const DiskList disks(2);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 0u);
    EXPECT_EQ(disks.count(), 1u);
    EXPECT_TRUE(disks.entriesUntouchedFrom(1));
}

TEST_F(LunListTest, SerialNumbersAreComparedAsTheFieldHoldsThem) {
    const std::wstring cut(65, L'x');
    openWith({namedLun(L"a", cut + L"1"), namedLun(L"b", cut + L"2"), namedLun(L"c", cut)});
    const DiskList disks(3);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 0u);
    EXPECT_EQ(disks.count(), 1u);
}

TEST_F(LunListTest, EveryEnumerationStartsAfresh) {
    openWith({lunWith(L"S1", {})});
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        const DiskList disks(1);
        EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 0u);
        EXPECT_EQ(disks.count(), 1u);
        if (i == 1) {
            closeSession();
            openSession();
        }
    }
}

TEST_F(LunListTest, FailedQueryGives14) {
    openWith({lunWith(L"S1", {})});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failQuery(kLunClass, resultOf(code));
        const DiskList disks(1);
        const DebugOutputCapture debugger;
        EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 14u);
        EXPECT_EQ(disks.count(), 0u);
        EXPECT_TRUE(disks.entriesUntouchedFrom(0));
        EXPECT_EQ(log.take(), failureOf("CreateInstanceEnum(KORVADSM_DISKS)", code));
        EXPECT_THAT(debugger.texts(), ElementsAre(kListFailed));
    }
}

TEST_F(LunListTest, NoSessionIsAFailedQuery) {
    const DiskList disks(0);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 14u);
    EXPECT_EQ(disks.count(), 0u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"CreateInstanceEnum(KORVADSM_DISKS)", kNullPointer}));
}

TEST_F(LunListTest, UnparsableLunEndsTheListWithoutACount) {
    openWith({lunWith(L"S1", {}), lunWith(L"S2", {}), lunWith(L"S3", {})});
    host.failGet(kLunClass, L"LunPath", resultOf(0x80041002), 2, 1);
    const LiveObjectsCheck objects(host);
    const DiskList disks(3);
    const DebugOutputCapture debugger;
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 15u);
    EXPECT_TRUE(disks.countUntouched());
    EXPECT_EQ(disks.serial(0), L"S1") << "the LUN before it was stored";
    EXPECT_TRUE(disks.entriesUntouchedFrom(1));
    EXPECT_THAT(queries(), ElementsAre(kAllLuns, "Next", "Next"));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"ParseLunInfoKORVA::Get(LunPath)", 0x80041002}));
    EXPECT_THAT(debugger.texts(), ElementsAre(kListFailed));
}

TEST_F(LunListTest, NoMemoryForABlockEndsTheList) {
    openWith({lunWith(L"S1", {})});
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    memory->failBlocks(lunBlockSize(0));
    const DiskList disks(1);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 7u);
    EXPECT_TRUE(disks.countUntouched());
    EXPECT_TRUE(disks.entriesUntouchedFrom(0));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LunListTest, ParseBlocksAreNotFreed) {
    openWith({namedLun(L"a", L"S1"), namedLun(L"b", L"S1")});
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    const DiskList disks(2);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 0u);
    EXPECT_EQ(countOf(memory.survivors(), lunBlockSize(0)), 2) << "that of a dropped LUN neither";
    EXPECT_THAT(memory.survivingTexts(), ElementsAre(L"storage1", L"KORVA Release 9.1.2", L"S1",
                                                     L"storage1", L"KORVA Release 9.1.2", L"S1"));
    EXPECT_EQ(memory.survivors().size(), 8u);
}

struct EnumerationEnd {
    unsigned long result;
    unsigned long statusWithLuns;
    unsigned long statusWithoutLuns;
};

class LunListEndTest : public LunListTest, public testing::WithParamInterface<EnumerationEnd> {};

TEST_P(LunListEndTest, StatusFollowsTheResultOfNext) {
    const auto& [result, statusWithLuns, statusWithoutLuns] = GetParam();
    openWith({lunWith(L"S1", {}), lunWith(L"S2", {})});
    for (const bool withLuns : {true, false}) {
        SCOPED_TRACE(withLuns);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failNext(kLunClass, resultOf(result), withLuns ? 2 : 1);
        const DiskList disks(2);
        const DebugOutputCapture debugger;
        const unsigned long expected = withLuns ? statusWithLuns : statusWithoutLuns;
        EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), expected);
        EXPECT_EQ(disks.count(), withLuns ? 1u : 0u) << "the count is written all the same";
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kListNext, result}));
        EXPECT_EQ(debugger.texts().size(), expected == 0 ? 0u : 1u);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, LunListEndTest,
    testing::Values(EnumerationEnd{1, 0, 15}, EnumerationEnd{0x80041002, 22, 22},
                    EnumerationEnd{0x00040004, 43, 43}, EnumerationEnd{0x80041010, 0, 15},
                    EnumerationEnd{0x80004005, 0, 15}, EnumerationEnd{0x00040001, 0, 15}));

TEST_F(LunListTest, UnknownClassIsReportedByNext) {
    host->removeClass(kWmi, kLunClass);
    openWith({});
    const DiskList disks(0);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 15u);
    EXPECT_EQ(disks.count(), 0u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kListNext, 0x80041010}));
}

TEST_F(LunListTest, SuccessWithoutAnEnumeratorIsAFailureOfNext) {
    openWith({lunWith(L"S1", {})});
    host.failQuery(kLunClass, S_OK);
    const DiskList disks(0);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 15u);
    EXPECT_EQ(disks.count(), 0u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kListNext, kNullPointer}));
}

TEST_F(LunListTest, SuccessWithoutAnObjectIsAFailureOfNext) {
    openWith({lunWith(L"S1", {})});
    host.failNext(kLunClass, S_OK);
    const DiskList disks(0);
    EXPECT_EQ(KORVADSMGetAllLunsEx(disks.get()), 15u);
    EXPECT_EQ(disks.count(), 0u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kListNext, kNullPointer}));
}

}  // namespace
}  // namespace quista::test

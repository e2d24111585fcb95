// The record of one LUN by its serial number.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/luns_test.h"
#include "tests/support/debug_output.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* kQueryS1 =
    "ExecQuery SELECT * FROM KORVADSM_LUNINFO WHERE SerialNumber = \"S1\"";

struct EnumerationEnd {
    unsigned long result;
    unsigned long status;
};

/// What a lookup of a record gave.
struct FoundDisk {
    unsigned long status = 0;
    TaskBlock<_KORVADSM_DISKINFO> info;
};

using DiskLookup = unsigned long (*)(wchar_t*, _KORVADSM_DISKINFO**);

FoundDisk lookUp(DiskLookup lookup, std::wstring serial) {
    _KORVADSM_DISKINFO* info = nullptr;
    const unsigned long status = lookup(serial.data(), &info);
    return {status, TaskBlock<_KORVADSM_DISKINFO>(info)};
}

// ---- Both lookups of a record

class DiskLookupTest : public LunsTest, public testing::WithParamInterface<DiskLookup> {
  protected:
    static FoundDisk find(const std::wstring& serial) { return lookUp(GetParam(), serial); }
};

constexpr const char* kDiskNext = "CallGetDiskInfoKORVA: IEnumWbemClassObject::Next";

TEST_P(DiskLookupTest, LunIsFoundWithItsPaths) {
    openWith({lunWith(L"S0", {}), lunWith(L"S1", {fibreChannelPath(1), iscsiPath(2)})});
    const FoundDisk disk = find(L"S1");
    ASSERT_EQ(disk.status, 0u);
    EXPECT_STREQ(disk.info->SerialNumber, L"S1");
    EXPECT_EQ(disk.info->NumberPaths, 2u);
    EXPECT_EQ(disk.info->Paths[0].DsmId, 1u);
    EXPECT_EQ(disk.info->Paths[1].DsmId, 2u);
    EXPECT_STREQ(disk.info->InstanceName, L"MPIO\\\\Disk&Ven_KORVA\\\\S1");
    EXPECT_THAT(queries(), ElementsAre(kQueryS1, "Next")) << "the search ends with the match";
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_P(DiskLookupTest, FoundBlockIsAllThatSurvives) {
    openWith({lunWith(L"S1", {iscsiPath(2)})});
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    const FoundDisk disk = find(L"S1");
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(countOf(memory.survivors(), lunBlockSize(1)), 1);
    EXPECT_THAT(memory.survivingTexts(), ElementsAreArray(keptTexts(L"S1")));
    EXPECT_EQ(memory.survivors().size(), 4u);
}

TEST_P(DiskLookupTest, NoMatchGives27) {
    openWith({lunWith(L"S1", {})});
    const FoundDisk disk = find(L"S2");
    EXPECT_EQ(disk.status, 27u);
    EXPECT_EQ(disk.info, nullptr);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kDiskNext, 1}));
}

TEST_P(DiskLookupTest, SerialNumberIsComparedExactly) {
    openWith({lunWith(L"s1", {})});
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    const FoundDisk disk = find(L"S1");
    EXPECT_EQ(disk.status, 27u);
    EXPECT_EQ(disk.info, nullptr);
    EXPECT_THAT(reads(), Contains("LUN.SerialNumber")) << "WQL finds it in spite of its case";
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kDiskNext, 1}));
    EXPECT_EQ(countOf(memory.survivors(), lunBlockSize(0)), 0) << "its block is freed";
}

TEST_P(DiskLookupTest, BlockOfALunThatDiffersIsTakenBack) {
    openWith({lunWith(L"s1", {})});
    _KORVADSM_DISKINFO other;
    _KORVADSM_DISKINFO* out = &other;
    wchar_t serial[] = L"S1";
    EXPECT_EQ(CallGetDiskInfoKORVA(serial, &out), 27u);
    EXPECT_EQ(out, nullptr);
}

TEST_P(DiskLookupTest, EnumerationThatBreaksOffBehindALunThatDiffers) {
    openWith({lunWith(L"s1", {})});
    host.failNext(kLunClass, resultOf(0x00040004), 2);
    const FoundDisk disk = find(L"S1");
    EXPECT_EQ(disk.status, 43u);
    EXPECT_EQ(disk.info, nullptr);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kDiskNext, 0x00040004}));
}

TEST_P(DiskLookupTest, SearchGoesOnBehindALunThatDiffers) {
    openWith({namedLun(L"a", L"s1", {fibreChannelPath(1)}), namedLun(L"b", L"S1", {iscsiPath(2)}),
              namedLun(L"c", L"S1", {iscsiPath(3)})});
    const FoundDisk disk = find(L"S1");
    ASSERT_EQ(disk.status, 0u);
    EXPECT_STREQ(disk.info->InstanceName, L"b");
    EXPECT_EQ(disk.info->Paths[0].DsmId, 2u);
    EXPECT_THAT(queries(), ElementsAre(kQueryS1, "Next", "Next"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_P(DiskLookupTest, SerialNumberOf65CharactersIsFound) {
    const std::wstring serial(65, L'x');
    openWith({lunWith(serial, {})});
    EXPECT_EQ(find(serial).status, 0u);
}

TEST_P(DiskLookupTest, LongerSerialNumberIsCutInTheRecordAndNotFound) {
    const std::wstring serial(66, L'x');
    openWith({lunWith(serial, {})});
    EXPECT_EQ(find(serial).status, 27u);
}

TEST_P(DiskLookupTest, UnreadableSerialNumberDoesNotMatch) {
    openWith({lunWith(L"S1", {})});
    host.failGet(kLunClass, L"SerialNumber", resultOf(0x80041002));
    EXPECT_EQ(find(L"S1").status, 27u) << "an unreadable serial number is empty";
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DsmGetWbemInfoGetStringVal reported an error while "
                                    "retrieving SerialNumber",
                                    0x80041002},
                            LogLine{kDiskNext, 1}));
}

TEST_P(DiskLookupTest, DoubleQuoteMakesTheQueryInvalid) {
    openWith({lunWith(L"S\"1", {})});
    const FoundDisk disk = find(L"S\"1");
    EXPECT_EQ(disk.status, 27u);
    EXPECT_EQ(disk.info, nullptr);
    EXPECT_THAT(queries(), ElementsAre("ExecQuery SELECT * FROM KORVADSM_LUNINFO WHERE "
                                       "SerialNumber = \"S\"1\""));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_P(DiskLookupTest, NullSerialNumberIsAnEmptyOne) {
    openWith({lunWith(L"S1", {})});
    _KORVADSM_DISKINFO* info = nullptr;
    EXPECT_EQ(GetParam()(nullptr, &info), 27u);
    EXPECT_EQ(info, nullptr);
    EXPECT_EQ(queries().front(),
              "ExecQuery SELECT * FROM KORVADSM_LUNINFO WHERE SerialNumber = \"\"");
}

TEST_P(DiskLookupTest, FailedQueryGives27WithoutALine) {
    openWith({lunWith(L"S1", {})});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failQuery(kLunClass, resultOf(code));
        EXPECT_EQ(find(L"S1").status, 27u);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_P(DiskLookupTest, NoSessionIsAFailedQuery) {
    EXPECT_EQ(find(L"S1").status, 27u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_P(DiskLookupTest, UnparsableLunGives1) {
    openWith({namedLun(L"a", L"S1", {fibreChannelPath(1)}), namedLun(L"b", L"S1")});
    host.failGet(kPathClass, L"Proxy", resultOf(0x80041002), 1, 1);
    const LiveObjectsCheck objects(host);
    EXPECT_EQ(find(L"S1").status, 1u) << "whatever the parser's status";
    EXPECT_THAT(queries(), ElementsAre(kQueryS1, "Next"));
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParsePathInfoKORVA::Get(ProxyPathInfo)", 0x80041002}));
}

TEST_P(DiskLookupTest, NoMemoryForTheBlockGives1) {
    openWith({lunWith(L"S1", {})});
    const AllocationScope memory;
    memory->failBlocks(lunBlockSize(0));
    const FoundDisk disk = find(L"S1");
    EXPECT_EQ(disk.status, 1u);
    EXPECT_EQ(disk.info, nullptr);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_P(DiskLookupTest, StatusFollowsTheResultOfNext) {
    openWith({lunWith(L"S1", {})});
    const EnumerationEnd ends[] = {
        {1, 27}, {0x80041002, 27}, {0x00040004, 43}, {0x80041010, 27}, {0x80004005, 27}};
    for (const auto& [result, status] : ends) {
        SCOPED_TRACE(result);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failNext(kLunClass, resultOf(result));
        const FoundDisk disk = find(L"S1");
        EXPECT_EQ(disk.status, status);
        EXPECT_EQ(disk.info, nullptr);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kDiskNext, result}));
    }
}

INSTANTIATE_TEST_SUITE_P(All, DiskLookupTest,
                         testing::Values(&CallGetDiskInfoKORVA, &DSMGetDiskInfoKORVA),
                         [](const auto& test) {
                             return test.param == &CallGetDiskInfoKORVA ? "CallGetDiskInfoKORVA"
                                                                        : "DSMGetDiskInfoKORVA";
                         });

// ---- What distinguishes them

class FailedDiskLookupTest : public LunsTest {};

constexpr const wchar_t* kLookupFailed = L"DSMGetDiskInfoKORVA: Failed CallGetDiskInfo().\n";

TEST_F(FailedDiskLookupTest, CallGetDiskInfoKORVALeavesTheBlockOfAFailedParse) {
    openWith({lunWith(L"S1", {})});
    host.failGet(kLunClass, L"LunPath", resultOf(0x80041002));
    const DebugOutputCapture debugger;
    const FoundDisk disk = lookUp(&CallGetDiskInfoKORVA, L"S1");
    EXPECT_EQ(disk.status, 1u);
    ASSERT_NE(disk.info, nullptr);
    EXPECT_STREQ(disk.info->FilerName, L"storage1");
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(FailedDiskLookupTest, DSMGetDiskInfoKORVAFreesTheBlockOfAFailedParse) {
    openWith({lunWith(L"S1", {})});
    host.failGet(kLunClass, L"LunPath", resultOf(0x80041002));
    const AllocationScope memory;
    const DebugOutputCapture debugger;
    const FoundDisk disk = lookUp(&DSMGetDiskInfoKORVA, L"S1");
    EXPECT_EQ(disk.status, 1u);
    EXPECT_EQ(disk.info, nullptr);
    EXPECT_EQ(countOf(memory.survivors(), lunBlockSize(0)), 0);
    EXPECT_THAT(debugger.texts(), ElementsAre(kLookupFailed));
}

TEST_F(FailedDiskLookupTest, DSMGetDiskInfoKORVAReplacesTheCallersPointerByNull) {
    openWith({});
    _KORVADSM_DISKINFO callers{};
    _KORVADSM_DISKINFO* info = &callers;
    const DebugOutputCapture debugger;
    std::wstring serial = L"S1";
    EXPECT_EQ(DSMGetDiskInfoKORVA(serial.data(), &info), 27u);
    EXPECT_EQ(info, nullptr);
    EXPECT_THAT(debugger.texts(), ElementsAre(kLookupFailed));
}

TEST_F(FailedDiskLookupTest, CallGetDiskInfoKORVALeavesTheCallersPointerWithoutAnInstance) {
    openWith({});
    _KORVADSM_DISKINFO callers{};
    _KORVADSM_DISKINFO* info = &callers;
    std::wstring serial = L"S1";
    EXPECT_EQ(CallGetDiskInfoKORVA(serial.data(), &info), 27u);
    EXPECT_EQ(info, &callers);
}

TEST_F(FailedDiskLookupTest, NothingIsSaidAboutASuccess) {
    openWith({lunWith(L"S1", {})});
    const DebugOutputCapture debugger;
    EXPECT_EQ(lookUp(&DSMGetDiskInfoKORVA, L"S1").status, 0u);
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

}  // namespace
}  // namespace quista::test

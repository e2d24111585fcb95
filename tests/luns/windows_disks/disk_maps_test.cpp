// The enumeration that both maps share: batches, the caller's map and count, its end and failures.
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/windows_disks/windows_disks_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Its text as WMI gives it takes a larger block than a disk does.
constexpr long long kSize = 1099511627776;

/// The n-th disk of a class, under a key of its own.
MofObject disk(const std::wstring& className, unsigned long index) {
    const std::wstring key = L"key " + std::to_wstring(index);
    return className == kDriveClass ? drive(index, key, kSize) : medium(key, drivePath(index));
}

std::vector<MofObject> disksOf(const std::wstring& className, unsigned long count) {
    std::vector<MofObject> disks;
    for (unsigned long i = 0; i < count; ++i) disks.push_back(disk(className, i));
    return disks;
}

class DiskMapsTest : public WindowsDisksTest, public testing::WithParamInterface<const wchar_t*> {
  protected:
    std::wstring className = GetParam();
    DiskMap map;

    unsigned long read() { return map.read(className); }
    /// What the map holds of a disk: only drives have a size.
    Disk entry(long number) const { return {number, className == kDriveClass ? kSize : 0}; }
    void openWithDisks(unsigned long count) { openWith(disksOf(className, count)); }
    std::vector<std::string> nextCalls(const std::vector<std::string>& results) const {
        std::vector<std::string> expected;
        for (const std::string& result : results) {
            expected.push_back("Next " + std::string(className.begin(), className.end()) + " " +
                               result);
        }
        return expected;
    }
};

INSTANTIATE_TEST_SUITE_P(WindowsDisks, DiskMapsTest, testing::Values(kDriveClass, kMediaClass));

TEST_P(DiskMapsTest, DisksComeInBatchesOfTwenty) {
    openWithDisks(45);
    const LiveObjectsCheck live(host);
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_EQ(map.count, 45);
    EXPECT_EQ(map.disks().size(), 45u);
    EXPECT_EQ(map.disks()[L"key 44"], entry(44));
    // Twenty, twenty, five with the end's result, and the end.
    EXPECT_EQ(calls(L"Next"), nextCalls({"0x0", "0x0", "0x1", "0x1"}));
    EXPECT_EQ(log.lines(), endOf(className));
}

TEST_P(DiskMapsTest, FullLastBatchIsFollowedByTheEnd) {
    openWithDisks(20);
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_EQ(map.count, 20);
    EXPECT_EQ(calls(L"Next"), nextCalls({"0x0", "0x1"}));
}

TEST_P(DiskMapsTest, QueryIsTheClasssOwn) {
    openWithDisks(1);
    read();
    const std::string name(className.begin(), className.end());
    EXPECT_EQ(calls(L"ExecQuery").size(), 1u);
    EXPECT_EQ(calls(L"ExecQuery").front(), "ExecQuery " + name + " SELECT * FROM " + name);
}

TEST_P(DiskMapsTest, NoDisksAreAnEmptyMap) {
    openSession();
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_EQ(map.count, 0);
    EXPECT_THAT(map.disks(), IsEmpty());
    EXPECT_EQ(log.lines(), endOf(className));
}

TEST_P(DiskMapsTest, MapIsNotEmptiedAndTheCountBeginsAtZero) {
    openWithDisks(2);
    map.raw()[L"earlier"] = static_cast<_WMIDISKDRIVEDATA*>(CoTaskMemAlloc(kDiskSize));
    *map.raw()[L"earlier"] = {99, 100};
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_EQ(map.count, 2);
    EXPECT_EQ(map.disks().size(), 3u);
    EXPECT_EQ(map.disks()[L"earlier"], (Disk{99, 100}));
    host.failQuery(className, E_FAIL);
    EXPECT_EQ(read(), DSM_WMI_FAILURE);
    EXPECT_EQ(map.count, 0);
    EXPECT_EQ(map.disks().size(), 3u);
}

TEST_P(DiskMapsTest, RepeatedKeyIsCountedAndItsOldBlockLost) {
    const std::wstring key = L"same";
    std::vector<MofObject> disks;
    for (const unsigned long index : {4ul, 7ul}) {
        disks.push_back(
            disk(className, index)
                .text(className == kDriveClass ? L"PNPDeviceID" : L"SerialNumber", key));
    }
    openWith(disks);
    const AllocationScope allocations;
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_EQ(map.count, 2);
    EXPECT_THAT(map.disks(), ElementsAre(testing::Pair(key, entry(7))));
    map.clear();
    EXPECT_THAT(allocations.survivors(), ElementsAre(kDiskSize));
}

TEST_P(DiskMapsTest, NothingElseIsKept) {
    openWithDisks(25);
    const AllocationScope allocations;
    const LiveObjectsCheck live(host);
    read();
    map.clear();
    EXPECT_THAT(allocations.survivors(), IsEmpty());
}

TEST_P(DiskMapsTest, FailedQueryIsReported) {
    openWithDisks(1);
    for (const unsigned long result : {0x80004005ul, 0x80041017ul, 0x800706BAul, 0x40004ul, 1ul}) {
        host->clearFaults();
        host.failQuery(className, asResult(result));
        EXPECT_EQ(read(), DSM_WMI_FAILURE);
        EXPECT_EQ(map.count, 0);
        const LogLines expected{{queryPlace(className), result}};
        EXPECT_EQ(log.take(), result == DSM_ERROR ? LogLines{} : expected);
    }
}

TEST_P(DiskMapsTest, SuccessWithoutEnumeratorEndsAtNext) {
    openWithDisks(1);
    host.failQuery(className, S_OK);
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_EQ(map.count, 0);
    EXPECT_EQ(log.lines(), (LogLines{{nextPlace(className), kNoObject}}));
}

TEST_P(DiskMapsTest, NoSessionFailsTheQuery) {
    EXPECT_EQ(read(), DSM_WMI_FAILURE);
    EXPECT_EQ(map.count, 0);
    EXPECT_EQ(log.lines(), (LogLines{{queryPlace(className), kNoObject}}));
}

TEST_P(DiskMapsTest, OnlyTheConnectionToCimv2IsUsed) {
    host.add(disk(className, 3), kCimv2);
    host.failConnect(kCimv2, E_ACCESSDENIED);
    openSession();
    EXPECT_EQ(read(), DSM_WMI_FAILURE);
    EXPECT_EQ(log.lines(), (LogLines{{queryPlace(className), kNoObject}}));
}

TEST_P(DiskMapsTest, MissingClassEndsTheEnumeration) {
    openSession();
    host->removeClass(kCimv2, className);
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_EQ(log.take(), (LogLines{{nextPlace(className), kInvalidClass}}));
    host->setUnknownClassAtCreation(true);
    EXPECT_EQ(read(), DSM_WMI_FAILURE);
    EXPECT_EQ(log.lines(), (LogLines{{queryPlace(className), kInvalidClass}}));
}

TEST_P(DiskMapsTest, ResultOfNextDecidesTheStatus) {
    openWithDisks(25);
    const unsigned long timedOut = className == kDriveClass ? DSM_LUN_INFO_FAILED : DSM_SUCCESS;
    const std::pair<unsigned long, unsigned long> cases[] = {{kNotFound, DSM_WMI_NOT_SUPPORTED},
                                                             {kTimedOut, timedOut},
                                                             {0x80004005, DSM_SUCCESS},
                                                             {0x80041010, DSM_SUCCESS},
                                                             {0x800706BA, DSM_SUCCESS},
                                                             {1, DSM_SUCCESS},
                                                             {0x40005, DSM_SUCCESS}};
    for (const auto& [result, status] : cases) {
        for (const unsigned occurrence : {1u, 2u, 3u}) {
            map.clear();
            host->clearFaults();
            host.failNext(className, asResult(result), occurrence, 1);
            const LiveObjectsCheck live(host);
            EXPECT_EQ(read(), status) << std::hex << result;
            const long read = occurrence == 1 ? 0 : occurrence == 2 ? 20 : 25;
            EXPECT_EQ(map.count, read) << "what came before stays and is counted";
            EXPECT_EQ(map.disks().size(), static_cast<std::size_t>(read));
            EXPECT_EQ(log.take(), (LogLines{{nextPlace(className), result}}));
        }
    }
}

TEST_P(DiskMapsTest, SuccessWithoutObjectsEndsTheEnumeration) {
    openWithDisks(2);
    host.failNext(className, S_OK, 1, 1);
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_EQ(map.count, 0);
    EXPECT_EQ(log.lines(), (LogLines{{nextPlace(className), kNoObject}}));
}

TEST_P(DiskMapsTest, WithoutMemoryTheCallEndsWithTheStatusReached) {
    openWithDisks(25);
    const LiveObjectsCheck live(host);
    for (const unsigned occurrence : {1u, 3u, 21u}) {
        map.clear();
        {
            const AllocationScope allocations;
            // The first block of this size holds the name of the query's language.
            allocations->failBlocks(kDiskSize, occurrence + 1, 1);
            EXPECT_EQ(read(), DSM_SUCCESS);
        }
        EXPECT_EQ(map.count, static_cast<long>(occurrence) - 1);
        EXPECT_EQ(map.disks().size(), occurrence - 1);
        EXPECT_EQ(log.take(), (LogLines{{exceptionPlace(className), 0}}));
    }
}

TEST_P(DiskMapsTest, BlocksHaveSixteenBytes) {
    openWithDisks(3);
    const AllocationScope allocations;
    allocations->guardBlocks(kDiskSize, kDiskSize);
    allocations->fillBlocks(0xA5);
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_GE(allocations->requests(kDiskSize), 3u);
    EXPECT_EQ(map.disks()[L"key 2"], entry(2));
    map.clear();
}

TEST_P(DiskMapsTest, EachFailedReadSkipsOneDiskAlone) {
    openWithDisks(3);
    const bool drives = className == kDriveClass;
    const std::vector<std::wstring> properties =
        drives ? std::vector<std::wstring>{L"PNPDeviceID", L"Index", L"Size"}
               : std::vector<std::wstring>{L"SerialNumber", L"Tag"};
    for (const std::wstring& property : properties) {
        const bool isTag = property == L"Tag";
        const std::string parser =
            drives || isTag ? "ParseWin32_DiskDrive" : "ParseWin32_PhysicalMedia";
        const std::string place =
            parser + "::Get(" + std::string(property.begin(), property.end()) + ")";
        for (const unsigned long result :
             {0x80041002ul, 0x80004005ul, 0x80041001ul, 0x800706BAul}) {
            for (const unsigned occurrence : {1u, 2u, 3u}) {
                SCOPED_TRACE(testing::Message() << place << " " << std::hex << result);
                map.clear();
                host->clearFaults();
                host.failGet(className, property, asResult(result), occurrence, 1);
                const LiveObjectsCheck live(host);
                EXPECT_EQ(read(), DSM_SUCCESS);
                EXPECT_EQ(map.count, 2);
                EXPECT_FALSE(map.disks().contains(L"key " + std::to_wstring(occurrence - 1)));
                EXPECT_EQ(log.take(), (LogLines{{place, result}, {nextPlace(className), kEnd}}));
            }
        }
    }
}

/// A result above zero ends the parser like a failure, yet the disk is entered as it then stands.
TEST_P(DiskMapsTest, PositiveResultOfAReadEntersAnEmptyDisk) {
    openWithDisks(2);
    const std::wstring property = className == kDriveClass ? L"Size" : L"Tag";
    host.failGet(className, property, asResult(kTimedOut), 1, 1);
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_EQ(map.count, 2);
    EXPECT_THAT(map.disks(),
                ElementsAre(testing::Pair(L"", Disk{-1, 0}), testing::Pair(L"key 1", entry(1))));
    EXPECT_EQ(log.take().front().code, kTimedOut);
    map.clear();
    host->clearFaults();
    host.failGet(className, property, asResult(1), 1, 1);
    EXPECT_EQ(read(), DSM_SUCCESS);
    EXPECT_TRUE(map.disks().contains(L""));
    EXPECT_EQ(log.lines(), endOf(className)) << "the general error is not logged for a read";
}

}  // namespace
}  // namespace quista::test

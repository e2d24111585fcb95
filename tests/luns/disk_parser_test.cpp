// The disk record with its paths: counts, path objects and what stays behind.
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/luns_test.h"
#include "tests/support/debug_output.h"
#include "tests/support/import_patch.h"
#include "tests/support/process_census.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

constexpr const wchar_t* kNoPaths = L"ParseDiskInfoKORVA: can't get PathInfo\n";
constexpr const wchar_t* kNoPathArray = L"ParseDiskInfoKORVA: can't get PathInfo object.\n";
constexpr const wchar_t* kPathFailed = L"ParseDiskInfoKORVA - ParsePathInfoKORVA failed";

class DiskParserTest : public LunsTest {
  protected:
    /// Opens a session on a host with this LUN and takes the instance.
    IWbemClassObject* open(const MofObject& lun) {
        openWith({lun});
        lun_ = onlyLun();
        return lun_.get();
    }

    /// Replaces the elements of Paths.
    void replacePaths(const std::vector<IUnknown*>& elements) {
        host.replaceValue(kLunClass, L"Paths", Value::objects(elements).get());
    }

    /// How many more blocks are on the heaps after ten parses of the LUN. The allocation spy, which
    /// stays once it is there, has one for every text that survives.
    std::size_t heapGrowth(IWbemClassObject* lun, unsigned long status) {
        AllocationSpy::instance();
        std::size_t before = 0;
        for (int i = 0; i < 12; ++i) {
            if (i == 2) before = countHeapBlocks();  // what is made once has been made
            EXPECT_EQ(parse(lun).status, status);
            host->clearTrace();
        }
        return countHeapBlocks() - before;
    }

  private:
    ObjectReference<IWbemClassObject> lun_;
};

std::vector<MofObject> paths(int count) {
    std::vector<MofObject> result;
    for (int i = 1; i <= count; ++i) result.push_back(fibreChannelPath(i));
    return result;
}

// ---- Counts and objects

TEST_F(DiskParserTest, PathsFollowOneAnotherInOrder) {
    const AllocationScope memory;
    memory->guardBlocks(lunBlockSize(3), lunBlockSize(3));
    const ParsedDisk disk =
        parse(lunWith(L"S1", {fibreChannelPath(11), iscsiPath(-12), iscsiPathOverIPv6(13)}));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->NumberPaths, 3u);
    EXPECT_EQ(disk.info->Paths[0].DsmId, 11u);
    EXPECT_EQ(disk.info->Paths[1].DsmId, static_cast<unsigned long>(-12));
    EXPECT_EQ(disk.info->Paths[2].DsmId, 13u);
    EXPECT_EQ(disk.info->Paths[3].DsmId, 0u) << "the record beyond the last path";
    EXPECT_STREQ(disk.info->InstanceName, L"MPIO\\\\Disk&Ven_KORVA\\\\S1");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DiskParserTest, NoPathsGiveARecordWithoutPaths) {
    const AllocationScope memory;
    memory->guardBlocks(lunBlockSize(0), lunBlockSize(0));
    const DebugOutputCapture debugger;
    const ParsedDisk disk = parse(lunWith(L"S1", {}));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->NumberPaths, 0u);
    EXPECT_EQ(disk.info->Paths[0].DsmId, 0u);
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(DiskParserTest, FewerObjectsThanCountedAreAccepted) {
    const DebugOutputCapture debugger;
    const ParsedDisk disk = parse(lunWith(L"S1", paths(2)).number(L"NumberOfPaths", 3));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->NumberPaths, 3u) << "the count stays what the DSM says";
    EXPECT_EQ(disk.info->Paths[0].DsmId, 1u);
    EXPECT_EQ(disk.info->Paths[1].DsmId, 2u);
    EXPECT_EQ(disk.info->Paths[2].DsmId, 0u);
    EXPECT_STREQ(disk.info->InstanceName, L"MPIO\\\\Disk&Ven_KORVA\\\\S1");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(debugger.texts(), IsEmpty());
}

TEST_F(DiskParserTest, MoreObjectsThanCountedAreRefusedUnparsed) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(3)).number(L"NumberOfPaths", 2));
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    memory->guardBlocks(lunBlockSize(2), lunBlockSize(2));
    const ParsedDisk disk = parse(lun);
    EXPECT_EQ(disk.status, 14u);
    ASSERT_NE(disk.info, nullptr) << "the block stays with the caller";
    EXPECT_EQ(disk.info->NumberPaths, 2u);
    EXPECT_EQ(disk.info->Paths[0].DsmId, 0u);
    EXPECT_STREQ(disk.info->InstanceName, L"");
    EXPECT_EQ(reads().back(), "LUN.Paths");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DiskParserTest, ObjectsWithoutACountAreRefused) {
    const ParsedDisk disk = parse(lunWith(L"S1", paths(1)).number(L"NumberOfPaths", 0));
    EXPECT_EQ(disk.status, 14u);
    EXPECT_EQ(disk.info->Paths[0].DsmId, 0u);
}

TEST_F(DiskParserTest, ObjectsFillTheBlockOfACountAbove255) {
    const AllocationScope memory;
    memory->guardBlocks(lunBlockSize(2), lunBlockSize(2));
    const ParsedDisk disk = parse(lunWith(L"S1", paths(3)).number(L"NumberOfPaths", 0x0102));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->NumberPaths, 0x0102u);
    EXPECT_EQ(disk.info->Paths[2].DsmId, 3u) << "the block has room for one more";
}

TEST_F(DiskParserTest, ObjectsBeyondTheBlockOfACountAbove255AreRefused) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(4)).number(L"NumberOfPaths", 0x0102));
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    memory->guardBlocks(lunBlockSize(2), lunBlockSize(2));
    const ParsedDisk disk = parse(lun);
    EXPECT_EQ(disk.status, 14u);
    EXPECT_EQ(disk.info->Paths[0].DsmId, 0u);
}

TEST_F(DiskParserTest, AllOf255PathsAreParsed) {
    const AllocationScope memory;
    memory->guardBlocks(lunBlockSize(255), lunBlockSize(255));
    const ParsedDisk disk = parse(lunWith(L"S1", paths(255)));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->NumberPaths, 255u);
    EXPECT_EQ(disk.info->Paths[254].DsmId, 255u);
}

TEST_F(DiskParserTest, BlockIsSizedByTheFirstReadOfTheCount) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(2)));
    const AllocationScope memory;
    memory->guardBlocks(lunBlockSize(0), lunBlockSize(0));
    host.replaceValue(kLunClass, L"NumberOfPaths", Value::bits(VT_I4, 0).get(), 1, 1);
    const ParsedDisk disk = parse(lun);
    EXPECT_EQ(disk.status, 14u) << "the count allows two paths, the block has room for one";
    EXPECT_EQ(disk.info->NumberPaths, 2u);
    EXPECT_EQ(disk.info->Paths[0].DsmId, 0u);
}

/// Has no memory for a table of 2^32 - 1 pointers, which some machines do have.
void* callocWithoutLargest(std::size_t count, std::size_t size) {
    return count == 0xFFFFFFFF ? nullptr : std::calloc(count, size);
}

TEST_F(DiskParserTest, NegativeCountIsALargeOne) {
    const ImportPatch patch("calloc", &callocWithoutLargest);
    IWbemClassObject* lun = open(lunWith(L"S1", paths(1)));
    const LiveObjectsCheck objects(host);
    host.replaceValue(kLunClass, L"NumberOfPaths", Value::bits(VT_I4, -1).get());
    const ParsedDisk disk = parse(lun);
    EXPECT_EQ(disk.status, 7u);
    ASSERT_NE(disk.info, nullptr);
    EXPECT_EQ(disk.info->NumberPaths, 0xFFFFFFFFu);
    EXPECT_EQ(reads().back(), "LUN.NumberOfPaths");
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"ParseDiskInfoKORVA", 7}));
}

// ---- Reads

TEST_F(DiskParserTest, InstanceIsReadBeforeAndAfterItsPaths) {
    parse(lunWith(L"S1", {fibreChannelPath(1)}));
    const std::vector<std::string> read = reads();
    ASSERT_GT(read.size(), 15u);
    EXPECT_EQ(read[11], "LUN.clusterType");
    EXPECT_EQ(read[12], "LUN.NumberOfPaths");
    EXPECT_EQ(read[13], "LUN.Paths");
    EXPECT_EQ(read[14], "path.ScsiAddress");
    EXPECT_EQ(read.back(), "LUN.InstanceName");
}

TEST_F(DiskParserTest, UnreadableCountLeavesARecordWithoutPaths) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(1)));
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failGet(kLunClass, L"NumberOfPaths", resultOf(code), 2);
        const ParsedDisk disk = parse(lun);
        EXPECT_EQ(disk.status, 0u);
        EXPECT_EQ(disk.info->NumberPaths, 0u);
        EXPECT_EQ(disk.info->Paths[0].DsmId, 0u);
        EXPECT_EQ(disk.info->InstanceName[0], L'\0');
        EXPECT_STREQ(disk.info->SerialNumber, L"S1");
        EXPECT_EQ(reads().back(), "LUN.NumberOfPaths");
        EXPECT_EQ(log.take(), failureOf("ParseDiskInfoKORVA::Get(NumberPaths)", code));
    }
}

TEST_F(DiskParserTest, UnreadablePathsLeaveARecordWithTheirCount) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(1)));
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failGet(kLunClass, L"Paths", resultOf(code));
        const DebugOutputCapture debugger;
        const ParsedDisk disk = parse(lun);
        EXPECT_EQ(disk.status, 0u);
        EXPECT_EQ(disk.info->NumberPaths, 1u);
        EXPECT_EQ(disk.info->Paths[0].DsmId, 0u);
        EXPECT_EQ(disk.info->InstanceName[0], L'\0');
        EXPECT_EQ(reads().back(), "LUN.Paths");
        EXPECT_EQ(log.take(), failureOf("ParseDiskInfoKORVA::Get(PathInfo)", code));
        EXPECT_THAT(debugger.texts(), ElementsAre(kNoPaths));
    }
}

TEST_F(DiskParserTest, PathsThatAreNoArrayOfObjectsAreRefused) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(1)));
    const Value values[] = {Value::bits(VT_NULL),  Value(),
                            Value::text(L"paths"), Value::longs({1, 2}),
                            Value::bytes({1}),     Value::object(pathsOf(lun).front().get())};
    log.clear();
    for (const Value& value : values) {
        SCOPED_TRACE(value.type());
        host->clearFaults();
        host.replaceValue(kLunClass, L"Paths", value.get());
        const LiveObjectsCheck objects(host);
        const DebugOutputCapture debugger;
        const ParsedDisk disk = parse(lun);
        EXPECT_EQ(disk.status, 14u);
        ASSERT_NE(disk.info, nullptr) << "the block stays with the caller";
        EXPECT_EQ(disk.info->NumberPaths, 1u);
        EXPECT_EQ(disk.info->InstanceName[0], L'\0');
        EXPECT_THAT(log.lines(), IsEmpty());
        EXPECT_THAT(debugger.texts(), ElementsAre(kNoPathArray));
    }
}

TEST_F(DiskParserTest, FailureOfTheLunsOwnFieldsEndsTheParse) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(1)));
    host.failGet(kLunClass, L"LunPath", resultOf(0x80041002));
    EXPECT_EQ(parse(lun).status, 15u);
    EXPECT_THAT(reads(), Not(Contains("LUN.NumberOfPaths")));
}

// ---- Elements that are no paths

TEST_F(DiskParserTest, NullAndForeignElementsEndTheParse) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(3)));
    const auto found = pathsOf(lun);
    const ObjectReference<IUnknown> foreign = foreignObject();
    for (IUnknown* element : {static_cast<IUnknown*>(nullptr), foreign.get()}) {
        SCOPED_TRACE(element != nullptr ? "foreign" : "null");
        host->clearFaults();
        log.clear();
        replacePaths({found[0].get(), element});
        const LiveObjectsCheck objects(host);
        const DebugOutputCapture debugger;
        const ParsedDisk disk = parse(lun);
        EXPECT_EQ(disk.status, 15u);
        EXPECT_EQ(disk.info->Paths[0].DsmId, 1u);
        EXPECT_EQ(disk.info->Paths[1].DsmId, 0u);
        EXPECT_THAT(log.lines(),
                    ElementsAre(LogLine{"ParsePathInfoKORVA:PathInfoObj is empty", 15}));
        EXPECT_THAT(debugger.texts(), ElementsAre(kPathFailed));
    }
}

// ---- What stays behind

TEST_F(DiskParserTest, EveryObjectIsReleasedAfterItsParse) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(4)));
    const LiveObjectsCheck objects(host);
    EXPECT_EQ(parse(lun).status, 0u);
}

TEST_F(DiskParserTest, ObjectsBehindAFailedOneAreNotReleased) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(4)));
    host.failGet(kPathClass, L"Proxy", resultOf(0x80041002), 2, 1);
    const LiveObjectsCheck objects(host, {.objects = 2});
    const AllocationScope memory;
    const ParsedDisk disk = parse(lun);
    EXPECT_EQ(disk.status, 15u);
    EXPECT_EQ(disk.info->Paths[0].Lun, 5u);
    EXPECT_EQ(disk.info->Paths[1].Lun, 5u) << "what was read before the failure";
    EXPECT_EQ(disk.info->Paths[2].Lun, 0u);
    EXPECT_THAT(memory.survivingTexts(), ElementsAreArray(keptTexts(L"S1")));
}

TEST_F(DiskParserTest, TableOfObjectsIsFreedAfterASuccess) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(4)));
    EXPECT_EQ(heapGrowth(lun, 0), 60u) << "three limited texts of each parse, seen by the spy";
}

TEST_F(DiskParserTest, TableOfObjectsIsNotFreedAfterAFailedPath) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(1)));
    // 1 leaves no line in the log, whose own blocks would count too.
    host.failGet(kPathClass, L"Proxy", resultOf(1));
    EXPECT_EQ(heapGrowth(lun, 15), 70u) << "the same texts, and the table of each parse";
}

// ---- The instance name

TEST_F(DiskParserTest, UnreadableInstanceNameLeavesItsFieldEmpty) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(1)));
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        host->clearFaults();
        host.failGet(kLunClass, L"InstanceName", resultOf(code));
        const ParsedDisk disk = parse(lun);
        EXPECT_EQ(disk.status, 0u);
        EXPECT_THAT(disk.info->InstanceName, Each(0));
        EXPECT_EQ(disk.info->Paths[0].DsmId, 1u);
        EXPECT_EQ(log.take(), failureOf("GetEscapedInstanceName::Get(InstanceName)", code));
    }
}

TEST_F(DiskParserTest, InstanceNameDoublesBackslashesAlone) {
    const ParsedDisk disk = parse(namedLun(L"a\\b\\\\c\"d'", L"S1"));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_STREQ(disk.info->InstanceName, L"a\\\\b\\\\\\\\c\"d'");
}

TEST_F(DiskParserTest, LongInstanceNameIsCutAndTerminated) {
    const AllocationScope memory;
    memory->guardBlocks(lunBlockSize(0), lunBlockSize(0));
    const ParsedDisk disk = parse(namedLun(std::wstring(200, L'\\'), L"S1"));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(std::wstring(disk.info->InstanceName), std::wstring(255, L'\\'));
    EXPECT_EQ(disk.info->NumberPaths, 0u);
}

TEST_F(DiskParserTest, InstanceNameThatFillsItsFieldIsWhole) {
    const ParsedDisk disk = parse(namedLun(std::wstring(255, L'n'), L"S1"));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(std::wstring(disk.info->InstanceName), std::wstring(255, L'n'));
}

TEST_F(DiskParserTest, NeedsNoSession) {
    IWbemClassObject* lun = open(lunWith(L"S1", paths(1)));
    closeSession();
    const ParsedDisk disk = parse(lun);
    EXPECT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->Paths[0].DsmId, 1u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
}  // namespace quista::test

// The LUN's own fields of the disk record, and the block that holds them.
#include <cstdlib>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/luns_test.h"
#include "tests/support/import_patch.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* kNumberPlace = "DsmGetPathInfoBval reported and error while retrieving ";
constexpr const char* kTextPlace = "DsmGetWbemInfoGetStringVal reported an error while retrieving ";

class DiskRecordTest : public LunsTest {
  protected:
    /// Parses a LUN without paths, one value of it replaced.
    ParsedDisk parseWith(const wchar_t* property, const Value& value) {
        host.replaceValue(kLunClass, property, value.get());
        return parse(lunWith(L"S1", {}));
    }
};

TEST_F(DiskRecordTest, EveryPropertyGoesToItsField) {
    const ParsedDisk disk = parse(lunWith(L"S1", {}));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_STREQ(disk.info->FilerName, L"storage1");
    EXPECT_STREQ(disk.info->KORVAVersionString, L"KORVA Release 9.1.2");
    EXPECT_STREQ(disk.info->LunPath, L"\"/vol/vol1/lun1\"") << "the quotes stay";
    EXPECT_STREQ(disk.info->SerialNumber, L"S1");
    EXPECT_EQ(disk.info->LunSize, 1099511627776u);
    EXPECT_EQ(disk.info->LunState, 0x00010203u);
    EXPECT_EQ(disk.info->CFMode, 1u);
    EXPECT_EQ(disk.info->LoadBalancePolicy, 3u);
    EXPECT_EQ(disk.info->KORVAVersion, 0x00090102u);
    EXPECT_THAT(disk.info->ReservationKey,
                ElementsAre(0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18));
    EXPECT_EQ(disk.info->clusterType, 2u);
    EXPECT_STREQ(disk.info->InstanceName, L"MPIO\\\\Disk&Ven_KORVA\\\\S1");
    EXPECT_EQ(disk.info->NumberPaths, 0u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DiskRecordTest, PropertiesAreReadInOrder) {
    parse(lunWith(L"S1", {}));
    EXPECT_THAT(reads(),
                ElementsAre("LUN.NumberofPaths", "LUN.FilerName", "LUN.LunPath", "LUN.LunState",
                            "LUN.CFMode", "LUN.KORVAVersion", "LUN.KORVAVersionString",
                            "LUN.KorvaDSMLoadBalancePolicy", "LUN.LunSize", "LUN.SerialNumber",
                            "LUN.ReservationKey", "LUN.clusterType", "LUN.NumberOfPaths",
                            "LUN.Paths", "LUN.InstanceName"));
}

TEST_F(DiskRecordTest, UnfilledBytesAreZero) {
    const AllocationScope memory;
    memory->fillBlocks(0x5A);
    const ParsedDisk disk = parse(lunWith(L"S1", {}));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->Reserved1, 0u);
    EXPECT_THAT(disk.info->Reserved2, Each(0));
    const auto* path = reinterpret_cast<const unsigned char*>(&disk.info->Paths[0]);
    EXPECT_THAT(std::vector<unsigned char>(path, path + sizeof(_KORVADSM_PATHINFO)), Each(0));
}

// ---- Memory

std::size_t refusedBytes = 0;
int refusals = 0;

/// Refuses blocks of one size and counts them.
void* mallocWithoutOneSize(std::size_t size) {
    if (size != refusedBytes) return std::malloc(size);
    ++refusals;
    return nullptr;
}

TEST_F(DiskRecordTest, TextWithoutMemoryLeavesItsField) {
    // The path's own characters, two quotes and a terminator: a size of no other text.
    const std::wstring path(211, L'p');
    refusedBytes = (path.size() + 3) * sizeof(wchar_t);
    refusals = 0;
    openWith({lunWith(L"S1", {}).text(L"LunPath", path)});
    const auto lun = onlyLun();
    const ImportPatch patch("malloc", &mallocWithoutOneSize);
    const ParsedDisk disk = parse(lun.get());
    EXPECT_EQ(refusals, 1);
    EXPECT_EQ(disk.status, 0u);
    EXPECT_STREQ(disk.info->LunPath, L"");
    EXPECT_STREQ(disk.info->SerialNumber, L"S1");
    EXPECT_THAT(log.lines(), IsEmpty());
}

// ---- The block

TEST_F(DiskRecordTest, BlockHasRoomForOneMorePathThanCounted) {
    const AllocationScope memory;
    const ParsedDisk disk = parse(lunWith(L"S1", {fibreChannelPath(1), iscsiPath(2)}));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(countOf(memory.survivors(), lunBlockSize(2)), 1);
}

TEST_F(DiskRecordTest, LowByteOfTheCountSizesTheBlock) {
    const AllocationScope memory;
    const ParsedDisk disk = parse(lunWith(L"S1", {}).number(L"NumberOfPaths", 0x0103));
    EXPECT_EQ(disk.status, 0u);
    EXPECT_EQ(countOf(memory.survivors(), lunBlockSize(3)), 1);
    EXPECT_EQ(disk.info->NumberPaths, 0x0103u) << "the record holds the whole count";
}

TEST_F(DiskRecordTest, OnlyBlockAndLimitedTextsSurvive) {
    const auto lun = (openWith({lunWith(L"S1", {iscsiPathOverIPv6(1)})}), onlyLun());
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    const ParsedDisk disk = parse(lun.get());
    ASSERT_EQ(disk.status, 0u);
    EXPECT_THAT(memory.survivingTexts(), ElementsAreArray(keptTexts(L"S1")));
    EXPECT_EQ(memory.survivors().size(), 4u);
    EXPECT_EQ(countOf(memory.survivors(), lunBlockSize(1)), 1);
}

TEST_F(DiskRecordTest, NoMemoryForTheBlockGivesNoRecord) {
    const auto lun = (openWith({lunWith(L"S1", {iscsiPath(1)})}), onlyLun());
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    memory->failBlocks(lunBlockSize(1));
    const ParsedDisk disk = parse(lun.get());
    EXPECT_EQ(disk.status, 7u);
    EXPECT_EQ(disk.info, nullptr);
    EXPECT_THAT(reads(), ElementsAre("LUN.NumberofPaths"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

// ---- The three limited texts

TEST_F(DiskRecordTest, TextsOf65CharactersAreWholeAndUnterminated) {
    const std::wstring text(65, L'x');
    const ParsedDisk disk =
        parse(lunWith(text, {}).text(L"FilerName", text).text(L"KORVAVersionString", text));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(std::wstring(disk.info->FilerName), text) << "the field is wider than its text";
    EXPECT_EQ(std::wstring(disk.info->KORVAVersionString, 65), text);
    EXPECT_EQ(std::wstring(disk.info->KORVAVersionString), text + L"\"/vol/vol1/lun1\"")
        << "it runs on into the field behind it";
    EXPECT_EQ(std::wstring(disk.info->SerialNumber, 65), text);
    EXPECT_EQ(disk.info->LunSize, 1099511627776u);
}

TEST_F(DiskRecordTest, LongerTextsAreCutAt65Characters) {
    const std::wstring text = std::wstring(65, L'x') + L"yyyy";
    const ParsedDisk disk =
        parse(lunWith(text, {}).text(L"FilerName", text).text(L"KORVAVersionString", text));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(std::wstring(disk.info->FilerName), text.substr(0, 65));
    EXPECT_EQ(std::wstring(disk.info->KORVAVersionString, 65), text.substr(0, 65));
    EXPECT_STREQ(disk.info->LunPath, L"\"/vol/vol1/lun1\"");
    EXPECT_EQ(std::wstring(disk.info->SerialNumber, 65), text.substr(0, 65));
    EXPECT_EQ(disk.info->LunSize, 1099511627776u);
}

TEST_F(DiskRecordTest, TextsOf32And33CharactersAreTerminated) {
    const AllocationScope memory;
    memory->fillBlocks(0x5A);
    const std::wstring shorter(32, L's');
    const std::wstring longer(33, L'l');
    const ParsedDisk disk =
        parse(lunWith(longer, {}).text(L"FilerName", longer).text(L"KORVAVersionString", shorter));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(std::wstring(disk.info->FilerName), longer);
    EXPECT_EQ(std::wstring(disk.info->KORVAVersionString), shorter);
    EXPECT_EQ(std::wstring(disk.info->SerialNumber), longer);
}

TEST_F(DiskRecordTest, NullTextsAreInvalidEntries) {
    const ParsedDisk disk = parse(
        lunWith(L"S1", {}).null(L"FilerName").null(L"KORVAVersionString").null(L"SerialNumber"));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_STREQ(disk.info->FilerName, L"Invalid Entry");
    EXPECT_STREQ(disk.info->KORVAVersionString, L"Invalid Entry");
    EXPECT_STREQ(disk.info->SerialNumber, L"Invalid Entry");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DiskRecordTest, CharacterArraysAreTexts) {
    host.replaceValue(kLunClass, L"FilerName", Value::shorts({L'f', L'1', 0}).get());
    host.replaceValue(kLunClass, L"KORVAVersionString", Value::shorts({L'A', 1, 0}).get());
    const ParsedDisk disk = parse(lunWith(L"S1", {}));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_STREQ(disk.info->FilerName, L"f1");
    EXPECT_STREQ(disk.info->KORVAVersionString, L"41:01");
}

TEST_F(DiskRecordTest, EmptyTextsLeaveEmptyFields) {
    const ParsedDisk disk =
        parse(lunWith(L"", {}).text(L"FilerName", L"").text(L"KORVAVersionString", L""));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_STREQ(disk.info->FilerName, L"");
    EXPECT_STREQ(disk.info->KORVAVersionString, L"");
    EXPECT_STREQ(disk.info->SerialNumber, L"");
}

// ---- LunPath

TEST_F(DiskRecordTest, LunPathThatFillsItsFieldIsWhole) {
    const std::wstring path(254, L'p');
    const ParsedDisk disk = parse(lunWith(L"S1", {}).text(L"LunPath", path));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(std::wstring(disk.info->LunPath), L"\"" + path + L"\"");
}

TEST_F(DiskRecordTest, LongerLunPathIsCutAndTerminated) {
    const ParsedDisk disk = parse(lunWith(L"S1", {}).text(L"LunPath", std::wstring(5000, L'p')));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(std::wstring(disk.info->LunPath), L"\"" + std::wstring(255, L'p'));
    EXPECT_STREQ(disk.info->SerialNumber, L"S1");
}

TEST_F(DiskRecordTest, LunPathOfAnotherTypeIsItsDisplayText) {
    const std::pair<Value, const wchar_t*> values[] = {{Value::bits(VT_NULL), L"<null>"},
                                                       {Value(), L"Invalid Entry"},
                                                       {Value::bits(VT_I4, 16), L"16 (0x10)"},
                                                       {Value::boolean(-1), L"TRUE"},
                                                       {Value::bytes({1, 2}), L""},
                                                       {Value::text(L""), L"\"\""}};
    const auto lun = (openWith({lunWith(L"S1", {})}), onlyLun());
    for (const auto& [value, text] : values) {
        host->clearFaults();
        host.replaceValue(kLunClass, L"LunPath", value.get());
        const ParsedDisk disk = parse(lun.get());
        ASSERT_EQ(disk.status, 0u);
        EXPECT_STREQ(disk.info->LunPath, text);
    }
}

TEST_F(DiskRecordTest, UnreadableLunPathEndsTheParse) {
    const auto lun = (openWith({lunWith(L"S1", {fibreChannelPath(1)})}), onlyLun());
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        const AllocationScope memory;
        host->clearFaults();
        host->clearTrace();
        host.failGet(kLunClass, L"LunPath", resultOf(code));
        const ParsedDisk disk = parse(lun.get());
        EXPECT_EQ(disk.status, 15u);
        ASSERT_NE(disk.info, nullptr) << "the block stays with the caller";
        EXPECT_STREQ(disk.info->FilerName, L"storage1");
        EXPECT_EQ(disk.info->LunState, 0u);
        EXPECT_THAT(reads(), ElementsAre("LUN.NumberofPaths", "LUN.FilerName", "LUN.LunPath"));
        EXPECT_EQ(log.take(), failureOf("ParseLunInfoKORVA::Get(LunPath)", code));
        EXPECT_THAT(memory.survivingTexts(), ElementsAre(L"storage1"));
    }
}

// ---- Numbers and the key

TEST_F(DiskRecordTest, PolicyIsTheLowByteOfTheProperty) {
    const ParsedDisk disk = parse(lunWith(L"S1", {}).number(L"KorvaDSMLoadBalancePolicy", 0x105));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->LoadBalancePolicy, 5u);
}

TEST_F(DiskRecordTest, LunSizeIsConvertedAsSignedDecimalText) {
    const std::pair<const wchar_t*, unsigned long long> sizes[] = {
        {L"0", 0},
        {L"9223372036854775807", 0x7FFFFFFFFFFFFFFF},
        {L"-2", 0xFFFFFFFFFFFFFFFE},
        {L"12 blocks", 12},
        {L"", 0}};
    const auto lun = (openWith({lunWith(L"S1", {})}), onlyLun());
    for (const auto& [text, size] : sizes) {
        host->clearFaults();
        host.replaceValue(kLunClass, L"LunSize", Value::text(text).get());
        const ParsedDisk disk = parse(lun.get());
        ASSERT_EQ(disk.status, 0u);
        EXPECT_EQ(disk.info->LunSize, size);
    }
}

TEST_F(DiskRecordTest, LunSizeThatIsNoTextIsZero) {
    const ParsedDisk disk = parseWith(L"LunSize", Value::bits(VT_I4, 5));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->LunSize, 0u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DiskRecordTest, NullNumbersAreZero) {
    MofObject lun = lunWith(L"S1", {});
    for (const wchar_t* name : {L"LunState", L"CFMode", L"KORVAVersion", L"LunSize",
                                L"KorvaDSMLoadBalancePolicy", L"clusterType", L"ReservationKey"}) {
        lun.null(name);
    }
    const ParsedDisk disk = parse(lun);
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->LunState, 0u);
    EXPECT_EQ(disk.info->CFMode, 0u);
    EXPECT_EQ(disk.info->KORVAVersion, 0u);
    EXPECT_EQ(disk.info->LunSize, 0u);
    EXPECT_EQ(disk.info->LoadBalancePolicy, 0u);
    EXPECT_EQ(disk.info->clusterType, 0u);
    EXPECT_THAT(disk.info->ReservationKey, Each(0));
    EXPECT_THAT(log.lines(), IsEmpty());
}

struct ByteArray {
    Value value;
    std::vector<unsigned char> field;
};

TEST_F(DiskRecordTest, ReservationKeyHoldsTheFirstEightElements) {
    const ByteArray keys[] = {
        {Value::bytes({1, 2, 3}), {1, 2, 3, 0, 0, 0, 0, 0}},
        {Value::bytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), {1, 2, 3, 4, 5, 6, 7, 8}},
        {Value::bytes({}), {0, 0, 0, 0, 0, 0, 0, 0}},
        {Value::longs({1, 2, 3, 4, 5, 6, 7, 8}), {0, 0, 0, 0, 0, 0, 0, 0}},
        {Value::text(L"12345678"), {0, 0, 0, 0, 0, 0, 0, 0}}};
    const auto lun = (openWith({lunWith(L"S1", {})}), onlyLun());
    for (const auto& [value, key] : keys) {
        host->clearFaults();
        host.replaceValue(kLunClass, L"ReservationKey", value.get());
        const ParsedDisk disk = parse(lun.get());
        ASSERT_EQ(disk.status, 0u);
        EXPECT_THAT(disk.info->ReservationKey, ElementsAreArray(key));
        EXPECT_EQ(disk.info->clusterType, 2u);
    }
}

// ---- Failing reads that do not end the parse

struct FailingRead {
    const wchar_t* property;
    std::string place;
    std::size_t offset;  ///< of the field that stays zero
    std::size_t size;
};

class UnreadableLunPropertyTest : public DiskRecordTest,
                                  public testing::WithParamInterface<FailingRead> {};

TEST_P(UnreadableLunPropertyTest, IsLoggedAndLeavesItsFieldZero) {
    const FailingRead& read = GetParam();
    const auto lun = (openWith({lunWith(L"S1", {})}), onlyLun());
    const ParsedDisk whole = parse(lun.get());
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        host->clearFaults();
        host.failGet(kLunClass, read.property, resultOf(code));
        const ParsedDisk disk = parse(lun.get());
        ASSERT_EQ(disk.status, 0u);
        EXPECT_EQ(log.take(), failureOf(read.place, code));

        auto* expected = reinterpret_cast<unsigned char*>(whole.info.get());
        std::memset(expected + read.offset, 0, read.size);
        EXPECT_EQ(std::memcmp(disk.info.get(), expected, lunBlockSize(0)), 0)
            << "every other field is filled";
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, UnreadableLunPropertyTest,
    testing::Values(
        FailingRead{L"FilerName", std::string(kTextPlace) + "FilerName", 0, 260},
        FailingRead{L"LunState", std::string(kNumberPlace) + "LunState", 1048, 4},
        FailingRead{L"CFMode", std::string(kNumberPlace) + "CFMode", 1052, 1},
        FailingRead{L"KORVAVersion", "ParseLunInfoKORVA::Get(KORVAVersion)", 1056, 4},
        FailingRead{L"KORVAVersionString", std::string(kTextPlace) + "KORVAVersionString", 260,
                    130},
        FailingRead{L"KorvaDSMLoadBalancePolicy",
                    std::string(kNumberPlace) + "KorvaDSMLoadBalancePolicy", 1053, 1},
        FailingRead{L"LunSize", "ParseLunInfoKORVA::Get(LunSize)", 1040, 8},
        FailingRead{L"SerialNumber", std::string(kTextPlace) + "SerialNumber", 904, 130},
        FailingRead{L"ReservationKey", "ParseLunInfoKORVA::Get(ReservationKey)", 1060, 8},
        FailingRead{L"clusterType", std::string(kNumberPlace) + "clusterType", 1069, 1}),
    [](const auto& test) { return narrow(test.param.property); });

TEST_F(DiskRecordTest, UnreadableCountGivesTheSmallestBlock) {
    const auto lun = (openWith({lunWith(L"S1", {})}), onlyLun());
    const AllocationScope memory;
    host.failGet(kLunClass, L"NumberOfPaths", resultOf(0x80041002), 1, 1);
    const ParsedDisk disk = parse(lun.get());
    EXPECT_EQ(disk.status, 0u);
    EXPECT_EQ(countOf(memory.survivors(), lunBlockSize(0)), 1);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{std::string(kNumberPlace) + "NumberofPaths", 0x80041002}))
        << "the count for the block is asked for under another spelling";
}

TEST_F(DiskRecordTest, NoInstanceIsAnUnreadableOne) {
    const ParsedDisk disk = parse(static_cast<IWbemClassObject*>(nullptr));
    EXPECT_EQ(disk.status, 15u);
    EXPECT_NE(disk.info, nullptr);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{std::string(kNumberPlace) + "NumberofPaths", kNullPointer},
                            LogLine{std::string(kTextPlace) + "FilerName", kNullPointer},
                            LogLine{"ParseLunInfoKORVA::Get(LunPath)", kNullPointer}));
}

}  // namespace
}  // namespace quista::test

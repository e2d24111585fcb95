// One path record, filled from an embedded path object.
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/luns/luns_test.h"
#include "tests/support/debug_output.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* kNumberPlace = "DsmGetPathInfoBval reported and error while retrieving ";
constexpr const wchar_t* kPathFailed = L"ParseDiskInfoKORVA - ParsePathInfoKORVA failed";

constexpr const char* kAddressReads[] = {"path.ScsiAddress", "address.PortNumber",
                                         "address.ScsiPathId", "address.TargetId", "address.Lun"};
constexpr const char* kCommonReads[] = {
    "path.PathState",   "path.PathWeight",           "path.DsmId",   "path.PathId",
    "path.ALUASupport", "path.TargetPortGroupState", "path.Protocol"};
constexpr const char* kFlagReads[] = {"path.Proxy", "path.PrimaryPath"};

class PathRecordTest : public LunsTest {
  protected:
    /// Opens a session on a host with a LUN of this path, for several parses of it.
    void openWithPath(const MofObject& path) {
        openWith({lunWith(L"S1", {path})});
        lun_ = onlyLun();
    }

    /// Parses the LUN of openWithPath with fresh log and trace.
    ParsedDisk parseAgain() {
        log.clear();
        host->clearTrace();
        return parse(lun_.get());
    }

    ParsedDisk parseWith(const MofObject& path) {
        openWithPath(path);
        return parseAgain();
    }

    ParsedDisk parseWith(const MofObject& path, const wchar_t* property, const Value& value) {
        host.replaceValue(kPathClass, property, value.get());
        return parseWith(path);
    }

    /// What is read of the path, without the reads of the LUN.
    std::vector<std::string> pathReads() const {
        std::vector<std::string> result = reads();
        std::erase_if(result, [](const std::string& read) { return read.starts_with("LUN."); });
        return result;
    }

  private:
    ObjectReference<IWbemClassObject> lun_;
};

/// All reads of a path up to the flags, with those of its protocol.
std::vector<std::string> readsWith(std::initializer_list<const char*> protocolReads) {
    std::vector<std::string> result(std::begin(kAddressReads), std::end(kAddressReads));
    result.insert(result.end(), std::begin(kCommonReads), std::end(kCommonReads));
    result.insert(result.end(), protocolReads.begin(), protocolReads.end());
    result.insert(result.end(), std::begin(kFlagReads), std::end(kFlagReads));
    return result;
}

void expectCommonFields(const _KORVADSM_PATHINFO& path) {
    EXPECT_EQ(path.DsmId, 1u);
    EXPECT_EQ(path.PathId, 0x77020001u);
    EXPECT_EQ(path.PortNumber, 2u);
    EXPECT_EQ(path.ScsiPathId, 0u);
    EXPECT_EQ(path.TargetId, 1u);
    EXPECT_EQ(path.Lun, 5u);
    EXPECT_EQ(path.PathState, 1u);
    EXPECT_EQ(path.Proxy, 0u);
    EXPECT_EQ(path.PrimaryPath, 1u);
    EXPECT_EQ(path.PathWeight, 17u);
    EXPECT_EQ(path.ALUASupport, 3u);
    EXPECT_EQ(path.TargetPortGroupState, 1u);
}

void expectNoFibreChannelFields(const _KORVADSM_PATHINFO& path) {
    EXPECT_THAT(path.TargetFcpNodename, Each(0));
    EXPECT_THAT(path.TargetFcpPortname, Each(0));
    EXPECT_THAT(path.TargetAdapterName, Each(0));
}

void expectNoIscsiFields(const _KORVADSM_PATHINFO& path) {
    EXPECT_EQ(path.TargetPortalGroupId, 0u);
    EXPECT_EQ(path.TargetTCPPortNumber, 0u);
    EXPECT_EQ(path.TargetIPv4Address, 0u);
    EXPECT_THAT(path.TargetIPv6Address, Each(0));
    EXPECT_THAT(path.TargetiSCSINodeName, Each(0));
    EXPECT_THAT(path.TargetiSCSIAdapterName, Each(0));
}

// ---- Protocols

TEST_F(PathRecordTest, FibreChannelPathFillsItsFields) {
    const AllocationScope memory;
    memory->fillBlocks(0x5A);
    const ParsedDisk disk = parseWith(fibreChannelPath(1));
    ASSERT_EQ(disk.status, 0u);
    const _KORVADSM_PATHINFO& path = disk.info->Paths[0];
    expectCommonFields(path);
    EXPECT_EQ(path.Protocol, 1u);
    EXPECT_THAT(path.TargetFcpNodename,
                ElementsAre(0x50, 0x0A, 0x09, 0x80, 0x00, 0x01, 0x02, 0x03));
    EXPECT_THAT(path.TargetFcpPortname,
                ElementsAre(0x50, 0x0A, 0x09, 0x81, 0x10, 0x11, 0x12, 0x13));
    EXPECT_STREQ(path.TargetAdapterName, L"\"0c\"") << "the quotes stay";
    expectNoIscsiFields(path);
    EXPECT_THAT(path.Reserved1, Each(0));
    EXPECT_THAT(path.Reserved2, Each(0));
    EXPECT_THAT(path.Reserved3, Each(0));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PathRecordTest, FibreChannelPathIsReadInOrder) {
    parseWith(fibreChannelPath(1));
    EXPECT_EQ(pathReads(), readsWith({"path.TargetAdapterName", "path.TargetFcpNodename",
                                      "path.TargetFcpPortname"}));
}

TEST_F(PathRecordTest, IscsiPathFillsItsFields) {
    const ParsedDisk disk = parseWith(iscsiPath(2));
    ASSERT_EQ(disk.status, 0u);
    const _KORVADSM_PATHINFO& path = disk.info->Paths[0];
    EXPECT_EQ(path.DsmId, 2u);
    EXPECT_EQ(path.PathId, 0x77040002u);
    EXPECT_EQ(path.PortNumber, 4u);
    EXPECT_EQ(path.ScsiPathId, 0u);
    EXPECT_EQ(path.TargetId, 3u);
    EXPECT_EQ(path.Lun, 6u);
    EXPECT_EQ(path.PathState, 2u);
    EXPECT_EQ(path.Protocol, 2u);
    EXPECT_EQ(path.Proxy, 1u);
    EXPECT_EQ(path.PrimaryPath, 0u);
    EXPECT_EQ(path.TargetPortalGroupId, 1001u);
    EXPECT_EQ(path.TargetTCPPortNumber, 3260u);
    EXPECT_EQ(path.TargetIPv4Address, 0x0100A8C0u);
    EXPECT_THAT(path.TargetIPv6Address, Each(0));
    EXPECT_STREQ(path.TargetiSCSINodeName, L"\"iqn.2026-01.example:storage1\"");
    EXPECT_STREQ(path.TargetiSCSIAdapterName, L"\"e0a\"");
    expectNoFibreChannelFields(path);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PathRecordTest, IscsiPathIsReadInOrder) {
    parseWith(iscsiPath(2));
    EXPECT_EQ(pathReads(), readsWith({"path.TargetPortalGroupId", "path.TargetTCPPortNumber",
                                      "path.TargetIPv4Address", "path.TargetiSCSINodeName",
                                      "path.TargetiSCSIAdapterName"}));
}

TEST_F(PathRecordTest, IscsiPathWithoutIPv4AddressHasAnIPv6Address) {
    const ParsedDisk disk = parseWith(iscsiPathOverIPv6(3));
    ASSERT_EQ(disk.status, 0u);
    const _KORVADSM_PATHINFO& path = disk.info->Paths[0];
    EXPECT_EQ(path.TargetIPv4Address, 0u);
    EXPECT_THAT(path.TargetIPv6Address, ElementsAre(0xFE, 0x80, 0, 0, 0, 0, 0, 0, 2, 2, 0xB3, 0xFF,
                                                    0xFE, 0x1E, 0x83, 0x29));
    EXPECT_STREQ(path.TargetiSCSIAdapterName, L"\"e0a\"");
    EXPECT_EQ(pathReads(), readsWith({"path.TargetPortalGroupId", "path.TargetTCPPortNumber",
                                      "path.TargetIPv4Address", "path.TargetIPv6Address",
                                      "path.TargetiSCSINodeName", "path.TargetiSCSIAdapterName"}));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PathRecordTest, FibreChannelBitWinsOverIscsiBit) {
    const ParsedDisk disk = parseWith(fibreChannelPath(1).number(L"Protocol", 3));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->Paths[0].Protocol, 3u);
    EXPECT_STREQ(disk.info->Paths[0].TargetAdapterName, L"\"0c\"");
    expectNoIscsiFields(disk.info->Paths[0]);
    EXPECT_EQ(pathReads(), readsWith({"path.TargetAdapterName", "path.TargetFcpNodename",
                                      "path.TargetFcpPortname"}));
}

TEST_F(PathRecordTest, PathOfNeitherProtocolHasTheCommonFieldsOnly) {
    for (const int protocol : {0, 4, 252}) {
        SCOPED_TRACE(protocol);
        host->removeInstances(kWmi, kLunClass);
        const ParsedDisk disk = parseWith(fibreChannelPath(1).number(L"Protocol", protocol));
        ASSERT_EQ(disk.status, 0u);
        expectCommonFields(disk.info->Paths[0]);
        EXPECT_EQ(disk.info->Paths[0].Protocol, protocol);
        expectNoFibreChannelFields(disk.info->Paths[0]);
        expectNoIscsiFields(disk.info->Paths[0]);
        EXPECT_EQ(pathReads(), readsWith({}));
        closeSession();
    }
}

// ---- Flags

TEST_F(PathRecordTest, FlagIsOneForTrueAlone) {
    const std::pair<Value, int> values[] = {
        {Value::boolean(-1), 1},       {Value::boolean(0), 0},     {Value::boolean(1), 0},
        {Value::boolean(2), 0},        {Value::bits(VT_I4, 1), 0}, {Value::bits(VT_I4, -1), 1},
        {Value::bits(VT_UI1, 255), 0}, {Value::bits(VT_NULL), 0},  {Value(), 0}};
    openWithPath(fibreChannelPath(1));
    for (const auto& [value, flag] : values) {
        host->clearFaults();
        host.replaceValue(kPathClass, L"Proxy", value.get());
        host.replaceValue(kPathClass, L"PrimaryPath", value.get());
        const ParsedDisk disk = parseAgain();
        ASSERT_EQ(disk.status, 0u);
        EXPECT_EQ(disk.info->Paths[0].Proxy, flag);
        EXPECT_EQ(disk.info->Paths[0].PrimaryPath, flag);
    }
}

// ---- IPv6 addresses

TEST_F(PathRecordTest, UnreadableIPv6AddressIsLoggedAsInvalidOnly) {
    openWithPath(iscsiPathOverIPv6(3));
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        host->clearFaults();
        host.failGet(kPathClass, L"TargetIPv6Address", resultOf(code));
        const DebugOutputCapture debugger;
        const ParsedDisk disk = parseAgain();
        EXPECT_EQ(disk.status, 14u);
        EXPECT_THAT(log.lines(), ElementsAre(LogLine{
                                     "ParsePathInfoKORVA::targetIPv6Address type is invalid", 15}));
        EXPECT_THAT(debugger.texts(), ElementsAre(kPathFailed));
        EXPECT_EQ(pathReads().back(), "path.TargetIPv6Address");
    }
}

TEST_F(PathRecordTest, MissingIPv6AddressIsInvalid) {
    openWithPath(iscsiPath(3).number(L"TargetIPv4Address", 0));
    ASSERT_TRUE(host->removeProperty(kWmi, kPathClass, L"TargetIPv6Address"));
    EXPECT_EQ(parseAgain().status, 14u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParsePathInfoKORVA::targetIPv6Address type is invalid", 15}));
}

TEST_F(PathRecordTest, IPv6AddressOfAnotherTypeIsInvalid) {
    const Value values[] = {Value::bits(VT_NULL),    Value(),
                            Value::text(L"fe80::1"), Value::shorts({1, 2}),
                            Value::longs({1, 2}),    Value::bits(VT_UI1, 1)};
    openWithPath(iscsiPathOverIPv6(3));
    for (const Value& value : values) {
        SCOPED_TRACE(value.type());
        host->clearFaults();
        host.replaceValue(kPathClass, L"TargetIPv6Address", value.get());
        const ParsedDisk disk = parseAgain();
        EXPECT_EQ(disk.status, 14u);
        EXPECT_THAT(disk.info->Paths[0].TargetIPv6Address, Each(0));
        EXPECT_THAT(log.lines(), ElementsAre(LogLine{
                                     "ParsePathInfoKORVA::targetIPv6Address type is invalid", 15}));
    }
}

TEST_F(PathRecordTest, IPv6AddressHoldsTheFirst16Elements) {
    std::vector<std::uint8_t> elements(17, 7);
    elements[16] = 9;
    openWithPath(iscsiPathOverIPv6(3));
    for (const std::size_t count : {0u, 4u, 16u, 17u}) {
        SCOPED_TRACE(count);
        host->clearFaults();
        host.replaceValue(
            kPathClass, L"TargetIPv6Address",
            Value::bytes({elements.begin(), elements.begin() + static_cast<std::ptrdiff_t>(count)})
                .get());
        const ParsedDisk disk = parseAgain();
        ASSERT_EQ(disk.status, 0u);
        std::vector<unsigned char> expected(16, 0);
        std::fill_n(expected.begin(), std::min<std::size_t>(count, 16), 7);
        EXPECT_THAT(disk.info->Paths[0].TargetIPv6Address, ElementsAreArray(expected));
        EXPECT_EQ(disk.info->Paths[0].TargetAdapterName[0], L'\0') << "the field behind it";
    }
}

// ---- Texts and world-wide names

TEST_F(PathRecordTest, LongNamesAreCutAndTerminated) {
    const std::wstring name(600, L'n');
    const std::wstring cut = L"\"" + std::wstring(255, L'n');
    const ParsedDisk fibre = parseWith(fibreChannelPath(1).text(L"TargetAdapterName", name));
    ASSERT_EQ(fibre.status, 0u);
    EXPECT_EQ(std::wstring(fibre.info->Paths[0].TargetAdapterName), cut);
    EXPECT_EQ(fibre.info->Paths[0].TargetiSCSINodeName[0], L'\0');

    closeSession();
    host->removeInstances(kWmi, kLunClass);
    const ParsedDisk iscsi = parseWith(
        iscsiPath(1).text(L"TargetiSCSINodeName", name).text(L"TargetiSCSIAdapterName", name));
    ASSERT_EQ(iscsi.status, 0u);
    EXPECT_EQ(std::wstring(iscsi.info->Paths[0].TargetiSCSINodeName), cut);
    EXPECT_EQ(std::wstring(iscsi.info->Paths[0].TargetiSCSIAdapterName), cut);
    EXPECT_THAT(iscsi.info->Paths[0].Reserved3, Each(0));
}

TEST_F(PathRecordTest, NamesThatFillTheirFieldsAreWhole) {
    const std::wstring name(254, L'n');
    const ParsedDisk disk = parseWith(fibreChannelPath(1).text(L"TargetAdapterName", name));
    ASSERT_EQ(disk.status, 0u);
    EXPECT_EQ(std::wstring(disk.info->Paths[0].TargetAdapterName), L"\"" + name + L"\"");
}

TEST_F(PathRecordTest, NamesOfOtherTypesAreTheirDisplayTexts) {
    const std::pair<Value, const wchar_t*> values[] = {{Value::bits(VT_NULL), L"<null>"},
                                                       {Value(), L"Invalid Entry"},
                                                       {Value::bits(VT_I4, 7), L"7 (0x7)"},
                                                       {Value::bytes({65}), L""}};
    openWithPath(fibreChannelPath(1));
    for (const auto& [value, text] : values) {
        host->clearFaults();
        host.replaceValue(kPathClass, L"TargetAdapterName", value.get());
        const ParsedDisk disk = parseAgain();
        ASSERT_EQ(disk.status, 0u);
        EXPECT_STREQ(disk.info->Paths[0].TargetAdapterName, text);
    }
}

struct ByteArray {
    Value value;
    std::vector<unsigned char> field;
};

TEST_F(PathRecordTest, WorldWideNamesHoldTheFirstEightElements) {
    const ByteArray names[] = {
        {Value::bytes({1, 2}), {1, 2, 0, 0, 0, 0, 0, 0}},
        {Value::bytes({1, 2, 3, 4, 5, 6, 7, 8, 9}), {1, 2, 3, 4, 5, 6, 7, 8}},
        {Value::bytes({}), {0, 0, 0, 0, 0, 0, 0, 0}},
        {Value::bits(VT_NULL), {0, 0, 0, 0, 0, 0, 0, 0}},
        {Value::longs({1, 2, 3, 4, 5, 6, 7, 8}), {0, 0, 0, 0, 0, 0, 0, 0}}};
    openWithPath(fibreChannelPath(1));
    for (const auto& [value, bytes] : names) {
        host->clearFaults();
        host.replaceValue(kPathClass, L"TargetFcpNodename", value.get());
        host.replaceValue(kPathClass, L"TargetFcpPortname", value.get());
        const ParsedDisk disk = parseAgain();
        ASSERT_EQ(disk.status, 0u);
        EXPECT_THAT(disk.info->Paths[0].TargetFcpNodename, ElementsAreArray(bytes));
        EXPECT_THAT(disk.info->Paths[0].TargetFcpPortname, ElementsAreArray(bytes));
        EXPECT_EQ(disk.info->Paths[0].TargetPortalGroupId, 0u) << "the field behind them";
    }
}

// ---- The SCSI address

TEST_F(PathRecordTest, UnreadableScsiAddressIsLoggedAndThePathGoesOn) {
    openWithPath(fibreChannelPath(1));
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        host->clearFaults();
        host.failGet(kPathClass, L"ScsiAddress", resultOf(code));
        const ParsedDisk disk = parseAgain();
        ASSERT_EQ(disk.status, 0u);
        EXPECT_EQ(log.lines(), failureOf("ParsePathInfoKORVA:Get(scsiAddr) failed", code));
        EXPECT_EQ(disk.info->Paths[0].PortNumber, 0u);
        EXPECT_EQ(disk.info->Paths[0].Lun, 0u);
        EXPECT_EQ(disk.info->Paths[0].DsmId, 1u);
        EXPECT_STREQ(disk.info->Paths[0].TargetAdapterName, L"\"0c\"");
    }
}

TEST_F(PathRecordTest, ScsiAddressThatIsNoObjectIsUnreadable) {
    const ObjectReference<IUnknown> foreign = foreignObject();
    const Value values[] = {Value::bits(VT_NULL), Value(), Value::object(nullptr),
                            Value::object(foreign.get()), Value::text(L"2:0:1:5")};
    openWithPath(fibreChannelPath(1));
    for (const Value& value : values) {
        SCOPED_TRACE(value.type());
        host->clearFaults();
        host.replaceValue(kPathClass, L"ScsiAddress", value.get());
        const ParsedDisk disk = parseAgain();
        ASSERT_EQ(disk.status, 0u);
        EXPECT_THAT(log.lines(),
                    ElementsAre(LogLine{"ParsePathInfoKORVA:Get(scsiAddr) failed", kNullPointer}));
        EXPECT_EQ(disk.info->Paths[0].DsmId, 1u);
    }
}

// ---- Failing reads

struct PathRead {
    const wchar_t* className;
    const wchar_t* property;
};

class UncheckedPathReadTest : public PathRecordTest,
                              public testing::WithParamInterface<PathRead> {};

TEST_P(UncheckedPathReadTest, IsLoggedAndThePathGoesOn) {
    const auto& [className, property] = GetParam();
    openWithPath(iscsiPath(1));
    const std::vector<std::string> wholeReads = (parseAgain(), pathReads());
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        host->clearFaults();
        host.failGet(className, property, resultOf(code));
        const ParsedDisk disk = parseAgain();
        EXPECT_EQ(disk.status, 0u);
        EXPECT_EQ(log.lines(), failureOf(kNumberPlace + narrow(property), code));
        EXPECT_EQ(pathReads(), wholeReads);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, UncheckedPathReadTest,
    testing::Values(PathRead{kAddressClass, L"PortNumber"}, PathRead{kAddressClass, L"ScsiPathId"},
                    PathRead{kAddressClass, L"TargetId"}, PathRead{kAddressClass, L"Lun"},
                    PathRead{kPathClass, L"PathState"}, PathRead{kPathClass, L"PathWeight"},
                    PathRead{kPathClass, L"DsmId"}, PathRead{kPathClass, L"PathId"},
                    PathRead{kPathClass, L"ALUASupport"},
                    PathRead{kPathClass, L"TargetPortGroupState"},
                    PathRead{kPathClass, L"TargetPortalGroupId"},
                    PathRead{kPathClass, L"TargetTCPPortNumber"}),
    [](const auto& test) { return narrow(test.param.property); });

TEST_F(PathRecordTest, UnreadableProtocolCountsAsNone) {
    host.failGet(kPathClass, L"Protocol", resultOf(0x80041002));
    const ParsedDisk disk = parseWith(fibreChannelPath(1));
    EXPECT_EQ(disk.status, 0u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{std::string(kNumberPlace) + "Protocol", 0x80041002}));
    EXPECT_EQ(pathReads(), readsWith({}));
}

TEST_F(PathRecordTest, UnreadableIPv4AddressLeadsToTheIPv6Address) {
    host.failGet(kPathClass, L"TargetIPv4Address", resultOf(0x80041002));
    const ParsedDisk disk = parseWith(iscsiPathOverIPv6(1));
    EXPECT_EQ(disk.status, 0u);
    EXPECT_EQ(disk.info->Paths[0].TargetIPv6Address[0], 0xFEu);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{std::string(kNumberPlace) + "TargetIPv4Address", 0x80041002}));
}

struct RequiredRead {
    const wchar_t* property;
    const char* place;
    bool iscsi;
};

class RequiredPathReadTest : public PathRecordTest,
                             public testing::WithParamInterface<RequiredRead> {};

TEST_P(RequiredPathReadTest, FailureEndsTheParse) {
    const auto& [property, place, iscsi] = GetParam();
    openWithPath(iscsi ? iscsiPath(1) : fibreChannelPath(1));
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failGet(kPathClass, property, resultOf(code));
        const DebugOutputCapture debugger;
        const ParsedDisk disk = parseAgain();
        EXPECT_EQ(disk.status, 15u);
        ASSERT_NE(disk.info, nullptr) << "the block stays with the caller";
        EXPECT_EQ(disk.info->NumberPaths, 1u);
        EXPECT_EQ(disk.info->Paths[0].DsmId, 1u);
        EXPECT_EQ(disk.info->InstanceName[0], L'\0');
        EXPECT_EQ(log.lines(), failureOf(place, code));
        EXPECT_THAT(debugger.texts(), ElementsAre(kPathFailed));
        EXPECT_EQ(reads().back(), "path." + narrow(property)) << "nothing is read any more";
    }
}

INSTANTIATE_TEST_SUITE_P(
    FibreChannel, RequiredPathReadTest,
    testing::Values(
        RequiredRead{L"TargetAdapterName", "ParsePathInfoKORVA::Get(TargetAdapterName)", false},
        RequiredRead{L"TargetFcpNodename", "ParsePathInfoKORVA::Get(TargetFcpNodename)", false},
        RequiredRead{L"TargetFcpPortname", "ParsePathInfoKORVA::Get(TargetFcpPortname)", false},
        RequiredRead{L"Proxy", "ParsePathInfoKORVA::Get(ProxyPathInfo)", false},
        RequiredRead{L"PrimaryPath", "ParsePathInfoKORVA::Get(PrimaryPathInfo)", false}),
    [](const auto& test) { return narrow(test.param.property); });

INSTANTIATE_TEST_SUITE_P(
    Iscsi, RequiredPathReadTest,
    testing::Values(RequiredRead{L"TargetiSCSINodeName",
                                 "ParsePathInfoKORVA::Get(TargetiSCSINodeName)", true},
                    RequiredRead{L"TargetiSCSIAdapterName",
                                 "ParsePathInfoKORVA::Get(TargetiSCSIAdapterName)", true}),
    [](const auto& test) { return narrow(test.param.property); });

}  // namespace
}  // namespace quista::test

// One path of a descriptor: its identifier and SCSI address.
#include <windows.h>

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/mpio_test.h"
#include "tests/mpio/values.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

const LogLine kParseFailed{"DSMGetMpioDescr", DSM_NO_MEMORY};
constexpr unsigned long long kMaximum = 0x7FFFFFFFFFFFFFFF;

class PathTest : public MpioTest {
  protected:
    PathTest() { openSession(); }

    /// Lists a host with one disk that has these paths.
    unsigned long list(const std::vector<MofObject>& paths) {
        host.add(descriptor(L"disk", paths));
        return DSMGetMpioDescr(record.get());
    }
    /// The identifier that the library makes of a value.
    unsigned long long identifierOf(const Value& value) {
        host->removeInstances(kWmi, kDescriptorClass);
        host->clearFaults();
        host.replaceValue(kPathClass, L"PathIdentifier", value);
        DescriptorRecord one(1);
        host.add(descriptor(L"disk", {path(1)}));
        EXPECT_EQ(DSMGetMpioDescr(one.get()), DSM_SUCCESS);
        return one.count() == 1 ? one.at(0).PdoInformation[0].PathIdentifier : 0;
    }
    /// The log of a call that failed in a read of the path.
    static auto failedIn(const char* property, unsigned long code) {
        return ElementsAre(LogLine{std::string("ParsePdoInfo::Get(") + property + ")", code},
                           kParseFailed);
    }

    DescriptorRecord record{1};
};

TEST_F(PathTest, AddressIsStoredByteByByte) {
    ASSERT_EQ(list({path(5, {1, 2, 3, 4}), path(6, {255, 254, 253, 252})}), DSM_SUCCESS);
    const _MPIO_SCSI_ADDRESS& first = record.at(0).PdoInformation[0].ScsiAddress;
    EXPECT_EQ(first.PortNumber, 1);
    EXPECT_EQ(first.ScsiPathId, 2);
    EXPECT_EQ(first.TargetId, 3);
    EXPECT_EQ(first.Lun, 4);
    const _PDO_INFORMATION* paths = record.at(0).PdoInformation;
    EXPECT_EQ(paths[1].ScsiAddress.PortNumber, 255);
    EXPECT_EQ(paths[1].ScsiAddress.ScsiPathId, 254);
    EXPECT_EQ(paths[1].ScsiAddress.TargetId, 253);
    EXPECT_EQ(paths[1].ScsiAddress.Lun, 252);
}

TEST_F(PathTest, ReservedBytesStayZero) {
    const AllocationScope scope;
    scope->fillBlocks(0x5A);
    ASSERT_EQ(list({path(5, {1, 2, 3, 4})}), DSM_SUCCESS);
    EXPECT_THAT(record.at(0).PdoInformation[0].Reserved, testing::Each(0));
}

TEST_F(PathTest, AddressBytesAreTheLowBytes) {
    host.replaceValue(kAddressClass, L"PortNumber", Value::number(0x12345678));
    host.replaceValue(kAddressClass, L"ScsiPathId", Value::boolean(true));
    host.replaceValue(kAddressClass, L"TargetId", Value::null());
    host.replaceValue(kAddressClass, L"Lun", Value::number(-2));
    ASSERT_EQ(list({path(5)}), DSM_SUCCESS);
    const _MPIO_SCSI_ADDRESS& address = record.at(0).PdoInformation[0].ScsiAddress;
    EXPECT_EQ(address.PortNumber, 0x78);
    EXPECT_EQ(address.ScsiPathId, 0xFF);
    EXPECT_EQ(address.TargetId, 0);
    EXPECT_EQ(address.Lun, 0xFE);
}

// ---- PathIdentifier

TEST_F(PathTest, IdentifierHas64Bits) {
    ASSERT_EQ(list({path(0x123456789ABCDEF0), path(kMaximum), path(0)}), DSM_SUCCESS);
    const _PDO_INFORMATION* paths = record.at(0).PdoInformation;
    EXPECT_EQ(paths[0].PathIdentifier, 0x123456789ABCDEF0u);
    EXPECT_EQ(paths[1].PathIdentifier, kMaximum);
    EXPECT_EQ(paths[2].PathIdentifier, 0u);
}

TEST_F(PathTest, IdentifierIsConvertedAsSignedText) {
    EXPECT_EQ(identifierOf(Value::text(L"4294967296")), 0x100000000u);
    EXPECT_EQ(identifierOf(Value::text(L"-2")), 0xFFFFFFFFFFFFFFFEu);
    EXPECT_EQ(identifierOf(Value::text(L"  +17x9")), 17u);
    EXPECT_EQ(identifierOf(Value::text(L"0x10")), 0u);
    EXPECT_EQ(identifierOf(Value::text(L"path")), 0u);
    EXPECT_EQ(identifierOf(Value::text(L"")), 0u);
}

TEST_F(PathTest, IdentifierBeyondTheSignedRangeIsTheConversionsAffair) {
    for (const wchar_t* text : {L"9223372036854775808", L"18446744073709551615",
                                L"99999999999999999999999999999999999999"}) {
        EXPECT_EQ(identifierOf(Value::text(text)), static_cast<unsigned long long>(_wtoi64(text)));
    }
}

TEST_F(PathTest, IdentifierThatIsNoTextIsZero) {
    EXPECT_EQ(identifierOf(Value::null()), 0u);
    EXPECT_EQ(identifierOf(Value::number(7)), 0u);
    EXPECT_EQ(identifierOf(Value::array(VT_UI1, 8)), 0u);
}

// ---- Reads that fail

class PathReadTest : public PathTest, public testing::WithParamInterface<const char*> {};

TEST_P(PathReadTest, MissingPropertyIsAParsingError) {
    const std::wstring property(GetParam(),
                                GetParam() + std::char_traits<char>::length(GetParam()));
    const bool ofPath = property == L"PathIdentifier" || property == L"ScsiAddress";
    host.failGet(ofPath ? kPathClass : kAddressClass, property, asResult(kNotFound), 2, 1);
    const LiveObjectsCheck live(host, {.objects = 1});
    EXPECT_EQ(list({path(1), path(2), path(3)}), DSM_WMI_PARSING_ERROR);
    EXPECT_EQ(record.count(), 0xFFFFFFFFu);
    EXPECT_THAT(log.lines(), failedIn(GetParam(), kNotFound));
    EXPECT_EQ(countCalls(L"Get PDO_INFORMATION.PathIdentifier"), 2u) << "the third is not read";
}

INSTANTIATE_TEST_SUITE_P(Properties, PathReadTest,
                         testing::Values("PathIdentifier", "ScsiAddress", "PortNumber",
                                         "ScsiPathId", "TargetId", "Lun"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(PathTest, MissingAddressIsAFailedRead) {
    EXPECT_EQ(list({path(1).null(L"ScsiAddress")}), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), failedIn("ScsiAddress", kNoObject));
    EXPECT_THAT(calls(), Not(Contains(L"Get PDOSCSI_ADDR.PortNumber")));
}

TEST_F(PathTest, AddressThatIsNoWmiObjectIsAFailedRead) {
    std::vector<Value> values;
    values.push_back(Value::object(nullptr));
    values.push_back(Value::object(foreignObject()));
    values.push_back(Value::number(4));
    values.push_back(Value::objects({}));
    for (const Value& value : values) {
        SCOPED_TRACE(value.get().vt);
        host->removeInstances(kWmi, kDescriptorClass);
        host->clearFaults();
        host.replaceValue(kPathClass, L"ScsiAddress", value);
        EXPECT_EQ(list({path(1)}), DSM_WMI_PARSING_ERROR);
        EXPECT_THAT(log.take(), failedIn("ScsiAddress", kNoObject));
    }
}

TEST_F(PathTest, NullElementFailsItsFirstRead) {
    host.add(descriptor(L"disk", {path(1), path(2)}));
    const Value paths = Value::ofProperty(kDescriptorClass, L"PdoInformation");
    host.replaceValue(kDescriptorClass, L"PdoInformation",
                      Value::objects({elementOf(paths, 0), nullptr}));
    host->clearTrace();
    EXPECT_EQ(DSMGetMpioDescr(record.get()), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), failedIn("PathIdentifier", kNoObject));
    EXPECT_EQ(countCalls(L"Get PDO_INFORMATION.PathIdentifier"), 1u);
}

TEST_F(PathTest, ElementThatIsNoWmiObjectCountsAsNull) {
    host.replaceValue(kDescriptorClass, L"PdoInformation", Value::objects({foreignObject()}));
    EXPECT_EQ(list({path(1)}), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), failedIn("PathIdentifier", kNoObject));
}

}  // namespace
}  // namespace quista::test

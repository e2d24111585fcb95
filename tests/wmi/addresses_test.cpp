// Network addresses as text, and the records of portals.
#include "wmi/addresses.h"

#include <cstddef>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <vector>

#include "tests/support/allocation_spy.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/log_file.h"
#include "tests/support/work_folder.h"
#include "tests/wmi/fake_object.h"
#include "tests/wmi/value.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<BYTE> kLinkLocal = {0xFE, 0x80, 0,    0,    0,    0,    0,    0,
                                      2,    2,    0xB3, 0xFF, 0xFE, 0x1E, 0x83, 0x29};
constexpr const wchar_t* kLinkLocalText = L"fe80:0000:0000:0000:0202:b3ff:fe1e:8329";
constexpr const wchar_t* kZeroText = L"0000:0000:0000:0000:0000:0000:0000:0000";

// ---- IPv6 text

TEST(IPv6TextTest, EightGroupsWithoutCompression) {
    std::wstring text = L"former";
    FormatIpV6Text(text, kLinkLocal.data());
    EXPECT_EQ(text, kLinkLocalText);
    FormatIpV6Text(text, std::vector<BYTE>(16).data());
    EXPECT_EQ(text, kZeroText);
}

TEST(IPv6TextTest, DigitsAreLowerCase) {
    std::wstring text;
    FormatIpV6Text(text, std::vector<BYTE>(16, 0xAB).data());
    EXPECT_EQ(text, L"abab:abab:abab:abab:abab:abab:abab:abab");
}

// ---- Address text

class AddressTextTest : public testing::Test {
  protected:
    struct Outcome {
        HRESULT result;
        std::wstring text;
    };

    /// The text of the fake address, freed as callers free it.
    Outcome addressText(unsigned long type) {
        wchar_t* text = nullptr;
        const HRESULT result = GetAddressText(&address, type, &text);
        EXPECT_NE(text, nullptr);
        Outcome outcome{result, text != nullptr ? text : L""};
        std::free(text);
        EXPECT_FALSE(log.exists()) << "nothing of an address is logged";
        return outcome;
    }

    void expectText(unsigned long type, const std::wstring& text, HRESULT result = S_OK) {
        const Outcome outcome = addressText(type);
        EXPECT_EQ(outcome.text, text);
        EXPECT_EQ(outcome.result, result);
    }

    WorkFolder folder;
    LogFile log;
    FakeObject address;
};

TEST_F(AddressTextTest, TextArrivesInDoubleQuotes) {
    address.text(L"TextAddress", L"target.example");
    expectText(0, L"\"target.example\"");
    EXPECT_THAT(address.reads(), ElementsAre(L"TextAddress"));
}

TEST_F(AddressTextTest, TextOfAnyValueIsItsDisplayText) {
    address.set(L"TextAddress", Value::bits(VT_NULL));
    expectText(0, L"<null>");
    address.number(L"TextAddress", 7);
    expectText(0, L"7 (0x7)");
}

TEST_F(AddressTextTest, UnreadableTextIsAnInvalidEntry) {
    expectText(0, L"Invalid Entry", kNotFound);
}

TEST_F(AddressTextTest, TextMayBeMissing) {
    address.set(L"TextAddress", Value::bytes({1}));
    wchar_t stale[] = L"stale";
    wchar_t* text = stale;
    EXPECT_EQ(GetAddressText(&address, 0, &text), S_OK);
    EXPECT_EQ(text, nullptr) << "a byte array has no text";
}

TEST_F(AddressTextTest, IPv4HasItsLowestByteFirst) {
    address.number(L"IpV4Address", 0x0100A8C0);
    expectText(1, L"192.168.0.1");
    EXPECT_THAT(address.reads(), ElementsAre(L"IpV4Address"));
    address.number(L"IpV4Address", -1);
    expectText(1, L"255.255.255.255");
    address.number(L"IpV4Address", static_cast<LONG>(0xFE0A0B0Cu));
    expectText(1, L"12.11.10.254");
}

TEST_F(AddressTextTest, IPv4TakesTheBitsOfAnyType) {
    address.set(L"IpV4Address", Value::bits(VT_NULL));
    expectText(1, L"0.0.0.0");
    address.set(L"IpV4Address", Value::bits(VT_UI1, 7));
    expectText(1, L"7.0.0.0");
}

TEST_F(AddressTextTest, UnreadableIPv4IsZero) {
    expectText(1, L"0.0.0.0", kNotFound);
}

TEST_F(AddressTextTest, IPv6IsFormatted) {
    address.set(L"IpV6Address", Value::bytes(kLinkLocal));
    expectText(2, kLinkLocalText);
    EXPECT_THAT(address.reads(), ElementsAre(L"IpV6Address"));
}

TEST_F(AddressTextTest, ShorterIPv6IsFilledWithZeros) {
    address.set(L"IpV6Address", Value::bytes({0x20, 0x01, 0x0D}));
    expectText(2, L"2001:0d00:0000:0000:0000:0000:0000:0000");
    address.set(L"IpV6Address", Value::bytes({}));
    expectText(2, kZeroText);
    address.set(L"IpV6Address", Value::bits(VT_ARRAY | VT_UI1));
    expectText(2, kZeroText);
}

TEST_F(AddressTextTest, LongerIPv6IsNotCopied) {
    address.set(L"IpV6Address", Value::bytes(std::vector<BYTE>(17, 0xFF)));
    expectText(2, kZeroText);
}

TEST_F(AddressTextTest, OtherValuesLeaveTheIPv6BufferEmpty) {
    address.set(L"IpV6Address", Value::shorts({1, 2}));
    expectText(2, L"");
    address.text(L"IpV6Address", kLinkLocalText);
    expectText(2, L"");
    address.set(L"IpV6Address", Value::bits(VT_NULL));
    expectText(2, L"");
    address.fail(L"IpV6Address", kFailed);
    expectText(2, L"", kFailed);
    address.set(L"IpV6Address", Value::bytes(kLinkLocal), kFailed);
    expectText(2, L"", kFailed);
}

TEST_F(AddressTextTest, NumericFormsComeInABufferOf1024Bytes) {
    address.number(L"IpV4Address", 0).set(L"IpV6Address", Value::bytes(kLinkLocal));
    for (const unsigned long type : {1ul, 2ul}) {
        wchar_t* text = nullptr;
        EXPECT_EQ(GetAddressText(&address, type, &text), S_OK);
        EXPECT_EQ(_msize(text), 1024u);
        std::free(text);
    }
}

TEST_F(AddressTextTest, OtherTypesReadNothing) {
    wchar_t stale[] = L"stale";
    for (const unsigned long type : {3ul, 4ul, 0xFFFFFFFFul}) {
        wchar_t* text = stale;
        EXPECT_EQ(GetAddressText(&address, type, &text), 1);
        EXPECT_EQ(text, stale);
    }
    EXPECT_THAT(address.reads(), IsEmpty());
}

TEST_F(AddressTextTest, ValuesAreCleared) {
    address.text(L"TextAddress", L"a").set(L"IpV6Address", Value::bytes(kLinkLocal));
    const AllocationScope scope;
    static_cast<void>(addressText(0));
    static_cast<void>(addressText(2));
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

// ---- Portals

class PortalAddressTest : public testing::Test {
  protected:
    static constexpr unsigned long kRoom = 3;

    PortalAddressTest() {
        for (unsigned long i = 0; i < kRoom; ++i) records[i].Valid = 1;
    }

    /// A portal whose address has one form.
    static void setPortal(FakeObject& portal, FakeObject& address, LONG port, LONG type) {
        address.number(L"Type", type);
        portal.number(L"Port", port).set(L"IPAddr", Value::object(&address));
    }

    HRESULT read(const std::vector<IWbemClassObject*>& portals) {
        const auto count = static_cast<unsigned long>(portals.size());
        const HRESULT result = GetPortalAddresses(portals.data(), records, count);
        EXPECT_FALSE(log.exists()) << "nothing of a portal is logged";
        return result;
    }

    /// Nothing but the validity byte of a record was written.
    void expectInvalid(unsigned long index) {
        EXPECT_EQ(records[index].Valid, 0);
        EXPECT_TRUE(block.untouched(index * sizeof(_KORVADSM_ISCSI_PORTAL),
                                    offsetof(_KORVADSM_ISCSI_PORTAL, Valid)));
    }

    WorkFolder folder;
    LogFile log;
    GuardedBuffer block{kRoom * sizeof(_KORVADSM_ISCSI_PORTAL)};
    _KORVADSM_ISCSI_PORTAL* records = block.as<_KORVADSM_ISCSI_PORTAL>();
    FakeObject address;
    FakeObject portal;
};

TEST_F(PortalAddressTest, EachFormFillsItsRecord) {
    FakeObject addresses[2];
    FakeObject portals[2];
    setPortal(portal, address, 3260, 1);
    address.number(L"IpV4Address", 0x0100A8C0);
    setPortal(portals[0], addresses[0], 3261, 2);
    addresses[0].set(L"IpV6Address", Value::bytes(kLinkLocal));
    setPortal(portals[1], addresses[1], -1, 0);
    addresses[1].text(L"TextAddress", L"target.example");

    EXPECT_EQ(read({&portal, &portals[0], &portals[1]}), S_OK);
    EXPECT_STREQ(records[0].Address, L"192.168.0.1");
    EXPECT_EQ(records[0].Port, 3260u);
    EXPECT_STREQ(records[1].Address, kLinkLocalText);
    EXPECT_EQ(records[1].Port, 3261u);
    EXPECT_STREQ(records[2].Address, L"\"target.example\"");
    EXPECT_EQ(records[2].Port, 0xFFFFFFFFu);
    for (unsigned long i = 0; i < kRoom; ++i) EXPECT_EQ(records[i].Valid, 1);
}

TEST_F(PortalAddressTest, ValidityIsOnlyTakenAway) {
    setPortal(portal, address, 3260, 1);
    address.number(L"IpV4Address", 0);
    records[0].Valid = 0;
    EXPECT_EQ(read({&portal}), S_OK);
    EXPECT_EQ(records[0].Port, 3260u);
    EXPECT_EQ(records[0].Valid, 0);
}

TEST_F(PortalAddressTest, PropertiesAreReadInOrder) {
    std::vector<std::wstring> reads;
    const auto record = [&](const std::wstring& name) { reads.push_back(name); };
    portal.onGet(record);
    address.onGet(record);
    setPortal(portal, address, 3260, 1);
    address.number(L"IpV4Address", 0);
    EXPECT_EQ(read({&portal}), S_OK);
    EXPECT_THAT(reads, ElementsAre(L"Port", L"IPAddr", L"Type", L"IpV4Address"));
}

TEST_F(PortalAddressTest, NoPortalsAreSuccess) {
    EXPECT_EQ(read({}), S_OK);
}

TEST_F(PortalAddressTest, UnreadablePortOrAddressMakesThePortalInvalid) {
    portal.set(L"IPAddr", Value::object(&address));
    EXPECT_EQ(read({&portal}), kNotFound);
    expectInvalid(0);
    EXPECT_THAT(portal.reads(), ElementsAre(L"Port", L"IPAddr")) << "both are read all the same";
    EXPECT_THAT(address.reads(), IsEmpty());

    portal.number(L"Port", 1).fail(L"IPAddr", kFailed);
    EXPECT_EQ(read({&portal}), kFailed);
    expectInvalid(0);
}

TEST_F(PortalAddressTest, CodesOfBothReadsAreCombined) {
    portal.fail(L"Port", static_cast<HRESULT>(0x80041001)).fail(L"IPAddr", 0x00000006);
    EXPECT_EQ(read({&portal}), static_cast<HRESULT>(0x80041007));
    expectInvalid(0);
}

TEST_F(PortalAddressTest, AddressThatIsNoObjectMakesThePortalInvalid) {
    portal.number(L"Port", 1);
    std::vector<Value> values;
    values.push_back(Value::object(nullptr));
    values.push_back(Value::bits(VT_NULL));
    values.push_back(Value::text(L"192.168.0.1"));
    values.push_back(Value::bits(VT_I4, 1));
    for (Value& value : values) {
        portal.set(L"IPAddr", std::move(value));
        records[0].Valid = 1;
        EXPECT_EQ(read({&portal}), E_POINTER);
        expectInvalid(0);
    }
}

TEST_F(PortalAddressTest, UnreadableTypeMakesThePortalInvalid) {
    setPortal(portal, address, 3260, 1);
    address.fail(L"Type", kFailed);
    EXPECT_EQ(read({&portal}), kFailed);
    expectInvalid(0);
    EXPECT_THAT(address.reads(), ElementsAre(L"Type"));
}

TEST_F(PortalAddressTest, UnknownTypeMakesThePortalInvalid) {
    setPortal(portal, address, 3260, 3);
    EXPECT_EQ(read({&portal}), 1);
    expectInvalid(0);
}

TEST_F(PortalAddressTest, UnreadableFormMakesThePortalInvalid) {
    for (const LONG type : {0, 1, 2}) {
        setPortal(portal, address, 3260, type);
        records[0].Valid = 1;
        EXPECT_EQ(read({&portal}), kNotFound);
        expectInvalid(0);
    }
}

TEST_F(PortalAddressTest, AddressWithoutTextMakesThePortalInvalid) {
    setPortal(portal, address, 3260, 0);
    address.set(L"TextAddress", Value::bytes({1}));
    EXPECT_EQ(read({&portal}), S_OK);
    expectInvalid(0);
}

TEST_F(PortalAddressTest, IPv6OfAnotherTypeIsEmptyText) {
    setPortal(portal, address, 3260, 2);
    address.set(L"IpV6Address", Value::bits(VT_NULL));
    EXPECT_EQ(read({&portal}), S_OK);
    EXPECT_STREQ(records[0].Address, L"");
    EXPECT_EQ(records[0].Port, 3260u);
    EXPECT_EQ(records[0].Valid, 1);
}

TEST_F(PortalAddressTest, ResultIsThatOfTheLastPortal) {
    FakeObject unreadable;
    setPortal(portal, address, 3260, 1);
    address.number(L"IpV4Address", 0x0100A8C0);
    EXPECT_EQ(read({&portal, nullptr, &unreadable}), kNotFound);
    expectInvalid(1);
    expectInvalid(2);
    EXPECT_EQ(records[0].Valid, 1);
    EXPECT_EQ(read({&unreadable, nullptr}), E_POINTER) << "a null element is an unreadable portal";
    EXPECT_EQ(read({&unreadable, &portal}), S_OK);
    EXPECT_STREQ(records[1].Address, L"192.168.0.1");
}

TEST_F(PortalAddressTest, LongTextIsCutSoThatItsTerminatorFits) {
    setPortal(portal, address, 3260, 0);
    for (const std::size_t length : {1021u, 1022u, 1023u, 5000u}) {
        const std::wstring text(length, L'x');
        address.text(L"TextAddress", text);
        EXPECT_EQ(read({&portal}), S_OK);
        EXPECT_EQ(std::wstring(records[0].Address), (L"\"" + text + L"\"").substr(0, 1023));
        EXPECT_EQ(records[0].Port, 3260u) << "the field behind is whole";
        EXPECT_EQ(records[0].Valid, 1);
    }
}

TEST_F(PortalAddressTest, EverythingIsReleased) {
    setPortal(portal, address, 3260, 0);
    address.text(L"TextAddress", L"a");
    const ULONG held = address.references();
    const AllocationScope scope;
    EXPECT_EQ(read({&portal, &portal}), S_OK);
    address.fail(L"TextAddress", kFailed);
    EXPECT_EQ(read({&portal}), kFailed);
    EXPECT_EQ(address.references(), held);
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

}  // namespace
}  // namespace quista::test

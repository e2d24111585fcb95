// The list of iSCSI adapters: descriptions, portals, and what each step's failure leaves.
#include <algorithm>

#include "tests/adapters/iscsi_adapter_map_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

constexpr const wchar_t* kSoftware = L"MS-iSCSI-Initiator-0000_0";

const MofObject kPortal = portal(ipv4Address(0x0100A8C0));

class IscsiAdapterListTest : public IscsiAdapterMapTest {
  protected:
    IscsiAdapterListTest() = default;

    /// The description of an adapter.
    std::wstring describe(const MofObject& instance) {
        openWith({instance});
        EXPECT_EQ(adapters.read(), DSM_SUCCESS);
        EXPECT_EQ(adapters.size(), 1u);
        return adapters.size() == 1 ? fieldText(adapters.at(0).Description) : L"";
    }
    /// Opens the session on adapters with one portal each, whose names end in these six characters.
    void openWithAdapters(const std::vector<std::wstring>& endings) {
        std::vector<MofObject> instances;
        for (const std::wstring& ending : endings) {
            instances.push_back(adapter(L"PCI\\" + ending, L"vendor.sys", L"M"));
            instances.push_back(portalInfo(L"PCI\\" + ending, {kPortal}));
        }
        openWith(instances);
    }
};

TEST_F(IscsiAdapterListTest, AdapterWithPortals) {
    openWith(
        {adapter(kSoftwareInstance),
         portalInfo(kSoftwareInstance, {kPortal, portal(textAddress(L"host.example"), 860),
                                        portal(ipv6Address({0xFE, 0x80, 0, 0, 0, 0, 0, 0, 2, 2,
                                                            0xB3, 0xFF, 0xFE, 0x1E, 0x83, 0x29}),
                                               0)})});
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    ASSERT_EQ(adapters.size(), 1u);
    const _KORVADSM_ISCSI_HBAINFO& record = adapters.at(0);
    EXPECT_EQ(fieldText(record.Description), kSoftware);
    ASSERT_EQ(record.PortalCount, 3u);
    EXPECT_EQ(fieldText(record.Portals[0].Address), L"192.168.0.1");
    EXPECT_EQ(record.Portals[0].Port, 3260u);
    EXPECT_EQ(record.Portals[0].Valid, 1);
    EXPECT_EQ(fieldText(record.Portals[1].Address), L"\"host.example\"");
    EXPECT_EQ(record.Portals[1].Port, 860u);
    EXPECT_EQ(record.Portals[1].Valid, 1);
    EXPECT_EQ(fieldText(record.Portals[2].Address), L"fe80:0000:0000:0000:0202:b3ff:fe1e:8329");
    EXPECT_EQ(record.Portals[2].Port, 0u);
    EXPECT_EQ(record.Portals[2].Valid, 1);
    EXPECT_FALSE(log.exists());
}

TEST_F(IscsiAdapterListTest, OrderOfReads) {
    openWith({adapter(kSoftwareInstance), portalInfo(kSoftwareInstance, {kPortal})});
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    EXPECT_THAT(calls(),
                ElementsAre(L"ExecQuery MSiSCSI_HBAInformation", L"Next MSiSCSI_HBAInformation",
                            L"Get MSiSCSI_HBAInformation.InstanceName",
                            L"Get MSiSCSI_HBAInformation.DriverName",
                            L"Get MSiSCSI_HBAInformation.UniqueAdapterId",
                            L"Get MSiSCSI_HBAInformation.VendorModel",  //
                            L"ExecQuery MSiSCSI_PortalInfoClass", L"Next MSiSCSI_PortalInfoClass",
                            L"Get MSiSCSI_PortalInfoClass.InstanceName",
                            L"Get MSiSCSI_PortalInfoClass.PortalInfoCount",
                            L"Get MSiSCSI_PortalInfoClass.PortalInformation",  //
                            L"Get ISCSI_PortalInfo.Port", L"Get ISCSI_PortalInfo.IPAddr",
                            L"Get ISCSI_IP_Address.Type", L"Get ISCSI_IP_Address.IpV4Address",
                            L"Next MSiSCSI_HBAInformation"));
    EXPECT_EQ(host->trace().front().detail, L"SELECT * FROM MSiSCSI_HBAInformation");
}

// ---- The list

TEST_F(IscsiAdapterListTest, MissingListIsMade) {
    openWith({});
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    EXPECT_TRUE(adapters.exists());
    EXPECT_EQ(adapters.size(), 0u);
}

/// The list is made before the query.
TEST_F(IscsiAdapterListTest, QueryFails) {
    openWithAdapters({L"0000_0"});
    host.failQuery(kAdapterClass, E_FAIL);
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    EXPECT_TRUE(adapters.exists());
    EXPECT_EQ(adapters.size(), 0u);
    EXPECT_FALSE(log.exists());
}

TEST_F(IscsiAdapterListTest, NoSession) {
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    EXPECT_TRUE(adapters.exists());
    EXPECT_EQ(adapters.size(), 0u);
}

TEST_F(IscsiAdapterListTest, RecordsAreAppended) {
    openWithAdapters({L"0000_0", L"0000_1"});
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    EXPECT_THAT(adapters.descriptions(),
                ElementsAre(L"M-0000_0", L"M-0000_1", L"M-0000_0", L"M-0000_1"));
    host.failQuery(kAdapterClass, E_FAIL);
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    EXPECT_EQ(adapters.size(), 4u);
}

// ---- Descriptions

TEST_F(IscsiAdapterListTest, SoftwareInitiator) {
    EXPECT_EQ(describe(adapter(kSoftwareInstance)), kSoftware);
    for (const wchar_t* driver : {L"MSISCSI.SYS", L"msiscsi", L" msiscsi.sys", L""}) {
        EXPECT_EQ(describe(adapter(kSoftwareInstance, driver)), L"iSCSI-Initiator-0000_0");
    }
}

TEST_F(IscsiAdapterListTest, BlanksBecomeHyphens) {
    EXPECT_EQ(describe(adapter(L"i_0000", L"vendor.sys", L" A  b c ")), L"-A--b-c--i_0000");
    // Those of the instance name stay.
    EXPECT_EQ(describe(adapter(L"x a b c", L"vendor.sys", L"M")), L"M- a b c");
    EXPECT_EQ(describe(adapter(L"i_0000", L"vendor.sys", L"A\tB")), L"A\tB-i_0000");
}

TEST_F(IscsiAdapterListTest, ShortInstanceNames) {
    EXPECT_EQ(describe(adapter(L"abcdefg", L"vendor.sys", L"M")), L"M-bcdefg");
    EXPECT_EQ(describe(adapter(L"abcdef", L"vendor.sys", L"M")), L"M-abcdef");
    EXPECT_EQ(describe(adapter(L"abc", L"vendor.sys", L"M")), L"M-abc");
    EXPECT_EQ(describe(adapter(L"", L"vendor.sys", L"M")), L"M-");
}

/// A text that is missing, or of another type, is empty.
TEST_F(IscsiAdapterListTest, TextsThatAreNone) {
    EXPECT_EQ(describe(adapter(L"i_0000").null(L"DriverName")), L"iSCSI-Initiator-i_0000");
    EXPECT_EQ(describe(adapter(L"i_0000").null(L"VendorModel")), L"MS--i_0000");
    EXPECT_EQ(describe(adapter(L"i_0000").null(L"UniqueAdapterId")), L"MS-iSCSI-Initiator-i_0000");
    VARIANT number{};
    number.vt = VT_I4;
    number.lVal = 5;
    for (const auto& [property, expected] : std::vector<std::pair<std::wstring, std::wstring>>{
             {L"InstanceName", L"MS-iSCSI-Initiator-"},
             {L"DriverName", L"iSCSI-Initiator-i_0000"},
             {L"VendorModel", L"MS--i_0000"}}) {
        openWith({adapter(L"i_0000")});
        host.replaceValue(kAdapterClass, property, number);
        EXPECT_EQ(adapters.read(), DSM_SUCCESS);
        EXPECT_THAT(adapters.descriptions(), ElementsAre(expected));
    }
}

/// What does not fit is cut; what is not filled holds zeros.
TEST_F(IscsiAdapterListTest, LongDescriptions) {
    EXPECT_EQ(describe(adapter(L"i_0000", L"vendor.sys", std::wstring(255, L'm'))),
              std::wstring(255, L'm') + L"-i_0000");
    const wchar_t* description = adapters.at(0).Description;
    EXPECT_TRUE(std::all_of(description + 262, description + 1024,
                            [](wchar_t character) { return character == L'\0'; }));
    EXPECT_EQ(describe(adapter(L"i_0000", L"vendor.sys", std::wstring(2000, L'm'))),
              std::wstring(1023, L'm'));
}

// ---- Portals

TEST_F(IscsiAdapterListTest, NoPortals) {
    openWith({adapter(kSoftwareInstance)});
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    ASSERT_EQ(adapters.size(), 1u);
    EXPECT_EQ(adapters.at(0).PortalCount, 0u);
    EXPECT_EQ(adapters.at(0).Portals, nullptr);
}

/// Kept: whether the adapter's own portals were found is not asked. The values of the last instance
/// that was looked at are taken.
TEST_F(IscsiAdapterListTest, PortalsOfAnotherAdapter) {
    openWith({adapter(kSoftwareInstance), portalInfo(L"other", {kPortal, kPortal})});
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    ASSERT_EQ(adapters.size(), 1u);
    EXPECT_EQ(adapters.at(0).PortalCount, 2u);
}

/// A record stays in the list when its portals do not add up.
TEST_F(IscsiAdapterListTest, WrongPortalCount) {
    for (const std::int64_t count : {0LL, 1LL, 3LL, 1000000LL, 0x80000000LL, 0xFFFFFFFFLL}) {
        openWith(
            {adapter(kSoftwareInstance),
             portalInfo(kSoftwareInstance, {kPortal, kPortal}).number(L"PortalInfoCount", count)});
        EXPECT_EQ(adapters.read(), DSM_NO_MEMORY) << count;
        ASSERT_EQ(adapters.size(), 1u);
        EXPECT_EQ(fieldText(adapters.at(0).Description), kSoftware);
        EXPECT_EQ(adapters.at(0).PortalCount, 0u);
        EXPECT_EQ(adapters.at(0).Portals, nullptr);
        EXPECT_EQ(adapters.at(0).Reserved[0], 0u);
        EXPECT_EQ(adapters.at(0).Reserved[1], 0u);
    }
    EXPECT_FALSE(log.exists());
}

TEST_F(IscsiAdapterListTest, PortalsThatCannotBeRead) {
    openWith({adapter(kSoftwareInstance),
              portalInfo(kSoftwareInstance,
                         {portal(MofObject(kAddressClass).number(L"Type", 3)), kPortal})});
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    ASSERT_EQ(adapters.at(0).PortalCount, 2u);
    EXPECT_EQ(adapters.at(0).Portals[0].Valid, 0);
    EXPECT_EQ(fieldText(adapters.at(0).Portals[0].Address), L"");
    EXPECT_EQ(adapters.at(0).Portals[1].Valid, 1);
}

/// The result of the last portal is the adapter's, and that of the last adapter the call's.
TEST_F(IscsiAdapterListTest, StatusOfTheLastPortal) {
    const MofObject empty = portal(MofObject(kAddressClass).number(L"Type", 3));
    openWith({adapter(kSoftwareInstance), portalInfo(kSoftwareInstance, {kPortal, empty})});
    EXPECT_EQ(adapters.read(), DSM_ERROR);
    EXPECT_EQ(adapters.at(0).PortalCount, 2u);
    EXPECT_EQ(adapters.at(0).Portals[1].Valid, 0);

    openWith({adapter(L"PCI\\0000_1"), portalInfo(L"PCI\\0000_1", {empty}), adapter(L"PCI\\0000_2"),
              portalInfo(L"PCI\\0000_2", {kPortal})});
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    EXPECT_EQ(adapters.size(), 2u);
}

// ---- Failures

/// An adapter that cannot be read is left out and its record freed; the next one follows.
TEST_F(IscsiAdapterListTest, AdapterThatCannotBeRead) {
    for (const wchar_t* property :
         {L"InstanceName", L"DriverName", L"UniqueAdapterId", L"VendorModel"}) {
        SCOPED_TRACE(testing::PrintToString(property));
        openWithAdapters({L"0000_0", L"0000_1"});
        host.failGet(kAdapterClass, property, kNotFound, 1, 1);
        {
            const LiveObjectsCheck live(host, {.objects = 2});
            EXPECT_EQ(adapters.read(), DSM_SUCCESS);
        }
        EXPECT_THAT(adapters.descriptions(), ElementsAre(L"M-0000_1"));

        openWithAdapters({L"0000_0", L"0000_1"});
        host.failGet(kAdapterClass, property, kNotFound, 2, 1);
        const AllocationScope allocations;
        EXPECT_EQ(adapters.read(), DSM_ISCSI_QUERY_FAILED);
        EXPECT_THAT(adapters.descriptions(), ElementsAre(L"M-0000_0"));
        const std::vector<std::size_t> kept = allocations.survivors();
        EXPECT_EQ(std::ranges::count(kept, kRecordBlock), 1);
    }
    EXPECT_FALSE(log.exists());
}

TEST_F(IscsiAdapterListTest, EnumerationEnds) {
    const std::pair<HRESULT, unsigned long> cases[] = {{1, DSM_SUCCESS},
                                                       {kTimedOut, DSM_LUN_INFO_FAILED},
                                                       {2, DSM_ISCSI_QUERY_FAILED},
                                                       {0x40005, DSM_ISCSI_QUERY_FAILED},
                                                       {E_FAIL, DSM_ISCSI_QUERY_FAILED}};
    for (const auto& [result, status] : cases) {
        openWithAdapters({L"0000_0", L"0000_1"});
        host.failNext(kAdapterClass, result, 2);
        EXPECT_EQ(adapters.read(), status) << std::hex << result;
        EXPECT_THAT(adapters.descriptions(), ElementsAre(L"M-0000_0"));
    }
    EXPECT_FALSE(log.exists());
}

/// The ordinary end leaves the status of the last adapter.
TEST_F(IscsiAdapterListTest, StatusOfTheLastAdapter) {
    openWith({adapter(L"PCI\\0000_0", L"vendor.sys", L"M"),
              portalInfo(L"PCI\\0000_0", {kPortal}).number(L"PortalInfoCount", 9)});
    EXPECT_EQ(adapters.read(), DSM_NO_MEMORY);
    adapters.clear();
    host.failNext(kAdapterClass, kTimedOut, 2);
    EXPECT_EQ(adapters.read(), DSM_LUN_INFO_FAILED);
}

TEST_F(IscsiAdapterListTest, NoMemoryForARecord) {
    openWithAdapters({L"0000_0", L"0000_1", L"0000_2"});
    const LiveObjectsCheck live(host);
    const AllocationScope allocations;
    allocations->failBlocks(kRecordBlock, 2, 1);
    EXPECT_EQ(adapters.read(), DSM_NO_MEMORY);
    EXPECT_THAT(adapters.descriptions(), ElementsAre(L"M-0000_0"));
}

TEST_F(IscsiAdapterListTest, NoMemoryForPortals) {
    openWith({adapter(kSoftwareInstance), portalInfo(kSoftwareInstance, {kPortal, kPortal})});
    const LiveObjectsCheck live(host);
    const AllocationScope allocations;
    allocations->failBlocks(2 * kPortalBlock);
    EXPECT_EQ(adapters.read(), DSM_NO_MEMORY);
    ASSERT_EQ(adapters.size(), 1u);
    EXPECT_EQ(fieldText(adapters.at(0).Description), kSoftware);
    EXPECT_EQ(adapters.at(0).PortalCount, 0u);
    EXPECT_EQ(adapters.at(0).Portals, nullptr);
}

/// Nothing is written behind the records, and nothing but them outlives the call.
TEST_F(IscsiAdapterListTest, BlocksOfTheCaller) {
    openWith({adapter(kSoftwareInstance, L"vendor.sys", std::wstring(2000, L'm')),
              portalInfo(kSoftwareInstance, {kPortal, kPortal})});
    const LiveObjectsCheck live(host);
    const AllocationScope allocations;
    allocations->guardBlocks(kPortalBlock, 2 * kPortalBlock);
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    EXPECT_THAT(allocations.survivors(), ElementsAre(kRecordBlock, 2 * kPortalBlock));
}

// ---- Every call fails in turn

struct Outcome {
    unsigned long status = 0;
    std::size_t adapters = 0;
    unsigned long portals = 0;
};

/// What the failure of a call leaves on a host with one adapter and one portal. Failures of the
/// portal lookup go unnoticed, but for the values that are missing then.
Outcome afterFailure(const std::wstring& call, unsigned occurrence) {
    const unsigned long failed = 0x80004005;
    const unsigned long noObject = 0x80004003;
    if (call == L"ExecQuery MSiSCSI_HBAInformation") return {DSM_SUCCESS, 0, 0};
    if (call == L"Next MSiSCSI_HBAInformation") {
        return occurrence == 1 ? Outcome{DSM_ISCSI_QUERY_FAILED, 0, 0}
                               : Outcome{DSM_ISCSI_QUERY_FAILED, 1, 1};
    }
    if (call.starts_with(L"Get MSiSCSI_HBAInformation")) return {DSM_ISCSI_QUERY_FAILED, 0, 0};
    if (call == L"Get MSiSCSI_PortalInfoClass.InstanceName") return {DSM_SUCCESS, 1, 1};
    if (call.starts_with(L"Get MSiSCSI_PortalInfoClass")) return {DSM_NO_MEMORY, 1, 0};
    if (call.starts_with(L"QueryInterface")) return {noObject, 1, 1};
    if (call.find(L"MSiSCSI_PortalInfoClass") != std::wstring::npos) return {DSM_SUCCESS, 1, 0};
    return {failed, 1, 1};
}

TEST_F(IscsiAdapterListTest, EveryCallFails) {
    const std::vector<MofObject> instances = {adapter(kSoftwareInstance),
                                              portalInfo(kSoftwareInstance, {kPortal})};
    openWith(instances);
    EXPECT_EQ(adapters.read(), DSM_SUCCESS);
    const std::vector<simulator::CallRecord> clean = host->trace();
    EXPECT_GT(clean.size(), 16u);
    for (std::size_t i = 0; i < clean.size(); ++i) {
        const simulator::CallRecord& call = clean[i];
        const auto occurrence = static_cast<unsigned>(
            std::count_if(clean.begin(), clean.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                          [&](const simulator::CallRecord& each) {
                              return each.interfaceName == call.interfaceName &&
                                     shortText(each) == shortText(call);
                          }));
        SCOPED_TRACE(testing::Message() << "occurrence " << occurrence << " of "
                                        << testing::PrintToString(shortText(call)));
        openWith(instances);
        host.fail(call.interfaceName, call.method, E_FAIL, call.className,
                  call.method == L"Get" ? call.detail : L"", occurrence, 1);
        const LiveObjectsCheck live(host);
        const Outcome outcome = afterFailure(shortText(call), occurrence);
        EXPECT_EQ(adapters.read(), outcome.status);
        ASSERT_EQ(adapters.size(), outcome.adapters);
        if (outcome.adapters == 1) {
            EXPECT_EQ(adapters.at(0).PortalCount, outcome.portals);
        }
        EXPECT_FALSE(log.exists());
    }
}

}  // namespace
}  // namespace quista::test

// SetDSMCounters.
#include "tests/simulator/driver/driver_fixture.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {
namespace {

constexpr const wchar_t* kVendorContext = L"18446738026475491344";  // 0xFFFFFA8004C31010
constexpr const wchar_t* kMembers[] = {L"PathVerifyEnabled", L"PathVerificationPeriod",
                                       L"PDORemovePeriod",   L"RetryCount",
                                       L"RetryInterval",     L"Reserved32"};

class CountersTest : public DriverTest {
  protected:
    /// Members numbered from 1 on.
    Object numberedCounters() {
        Object counters = spawn(L"DSM_COUNTERS");
        std::uint32_t number = 0;
        for (const wchar_t* member : kMembers) put(*counters, member, ++number);
        put(*counters, L"Reserved64", variantOf(L"7"));
        return counters;
    }

    HRESULT set(const wchar_t* context, IWbemClassObject* counters) {
        const Object in = inParameters(L"MPIO_WMI_METHODS", L"SetDsmCounters");
        if (context != nullptr) put(*in, L"DSMcontext", variantOf(context));
        if (counters != nullptr) {
            counters->AddRef();
            OwnedVariant value;
            value->vt = VT_UNKNOWN;
            value->punkVal = counters;
            put(*in, L"DsmCounters", std::move(value));
        }
        return execute(pathOf(L"MPIO_WMI_METHODS", L"ROOT\\MPIO\\0000_0"), L"SetDsmCounters",
                       in.get());
    }

    /// The seven counters of a registered DSM.
    std::vector<std::uint64_t> counters(std::size_t dsm) {
        const simulator::Repository host = repository();
        const auto registration = host.instances(kWmi, L"MPIO_REGISTERED_DSM").at(0);
        const auto entry = objectsOf(*registration, L"DsmParameters").at(dsm);
        const auto object = objectOf(*entry, L"DsmCounters");
        std::vector<std::uint64_t> values;
        for (const wchar_t* member : kMembers) values.push_back(numberOf(*object, member));
        values.push_back(numberOf(*object, L"Reserved64"));
        return values;
    }
};

TEST_F(CountersTest, AllMembers_OfTheDsmWithThatContext) {
    EXPECT_EQ(set(kVendorContext, numberedCounters().get()), S_OK);
    EXPECT_FALSE(hasAnswer());
    EXPECT_EQ(counters(0), (std::vector<std::uint64_t>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(counters(1), (std::vector<std::uint64_t>{0, 30, 20, 3, 1, 0, 0}));
}

TEST_F(CountersTest, MembersLeftNull_BecomeZero) {
    const Object given = spawn(L"DSM_COUNTERS");
    put(*given, L"RetryCount", 9);
    EXPECT_EQ(set(kVendorContext, given.get()), S_OK);
    EXPECT_EQ(counters(0), (std::vector<std::uint64_t>{0, 0, 0, 9, 0, 0, 0}));
}

TEST_F(CountersTest, UnknownContextOrMissingInput_RefusedWithoutChange) {
    const std::wstring before = host().dump();
    EXPECT_EQ(set(L"4711", numberedCounters().get()), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(set(nullptr, numberedCounters().get()), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(set(kVendorContext, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(host().dump(), before);
}

TEST_F(CountersTest, HostWithoutRegistrations_Refuses) {
    host().removeInstances(L"root\\wmi", L"MPIO_REGISTERED_DSM");
    EXPECT_EQ(set(kVendorContext, numberedCounters().get()), wbem(WBEM_E_INVALID_PARAMETER));
}

}  // namespace
}  // namespace quista::test

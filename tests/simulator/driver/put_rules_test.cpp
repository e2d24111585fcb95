// PutInstance on the settings of the DSM and of MPIO.
#include "tests/simulator/driver/driver_fixture.h"
#include "tests/simulator/hosts/host_consistency.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {
namespace {

const std::vector<std::uint8_t> kNewKey = {0, 0xFF, 1, 2, 3, 4, 5, 0};

class PutRulesTest : public DriverTest {
  protected:
    std::uint64_t setting(std::wstring_view className, std::wstring_view property) {
        return numberOf(*repository().instances(kWmi, className).at(0), property);
    }
};

TEST_F(PutRulesTest, ReservationKey_IsShownByEveryLun) {
    EXPECT_EQ(change(L"KORVADSM", L"ReservationKey", variantOf(kNewKey)), S_OK);
    for (const VendorLun& lun : vendorLuns(repository())) EXPECT_EQ(lun.reservationKey, kNewKey);
    expectConsistent(repository());
}

TEST_F(PutRulesTest, UnchangedReservationKey_LeavesTheLunsAlone) {
    ASSERT_EQ(change(L"KORVADSM_LUNINFO", L"ReservationKey", variantOf(kNewKey)), S_OK);
    EXPECT_EQ(change(L"KORVADSM", L"EventLogLevel", variantOf(3)), S_OK);
    EXPECT_EQ(setting(L"KORVADSM", L"EventLogLevel"), 3u);
    EXPECT_EQ(lun(0).reservationKey, kNewKey);
    EXPECT_NE(lun(1).reservationKey, kNewKey);
}

TEST_F(PutRulesTest, DefaultPolicy_IsKeptAndLeavesTheLunsAlone) {
    EXPECT_EQ(change(L"KORVADSM", L"DefaultLoadBalancePolicy", variantOf(4)), S_OK);
    EXPECT_EQ(setting(L"KORVADSM", L"DefaultLoadBalancePolicy"), 4u);
    EXPECT_EQ(lun(0).policy, kSubset);
}

TEST_F(PutRulesTest, Timers_WithinTheirLimits_AreKept) {
    EXPECT_EQ(change(L"MPIO_TIMERS_COUNTERS", L"RetryCount", variantOf(500)), S_OK);
    EXPECT_EQ(change(L"MPIO_TIMERS_COUNTERS", L"RetryInterval", variantOf(-1)), S_OK);
    EXPECT_EQ(setting(L"MPIO_TIMERS_COUNTERS", L"RetryCount"), 500u);
    EXPECT_EQ(setting(L"MPIO_TIMERS_COUNTERS", L"RetryInterval"), 0xFFFFFFFFu);
}

TEST_F(PutRulesTest, ValueBeyondTheClassesLimit_IsRefused) {
    const std::wstring before = host().dump();
    EXPECT_EQ(change(L"MPIO_TIMERS_COUNTERS", L"RetryCount", variantOf(501)),
              wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(change(L"MPIO_TIMERS_COUNTERS", L"RetryCount", variantOf(-1)),
              wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(host().dump(), before);
}

TEST_F(PutRulesTest, Limits_HoldForSignedAndHugeNumbers) {
    load(
        LR"(class Limited { [key] string InstanceName; [MinValue(-5), MaxValue(5)] sint32 Small;
                             [MaxValue(10)] uint64 Huge; };
             instance of Limited { InstanceName = "a"; };)");
    EXPECT_EQ(change(L"Limited", L"Small", variantOf(-5)), S_OK);
    EXPECT_EQ(change(L"Limited", L"Small", variantOf(-6)), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(change(L"Limited", L"Small", variantOf(6)), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(change(L"Limited", L"Huge", variantOf(L"10")), S_OK);
    EXPECT_EQ(change(L"Limited", L"Huge", variantOf(L"18446744073709551615")),
              wbem(WBEM_E_INVALID_PARAMETER));
}

}  // namespace
}  // namespace quista::test

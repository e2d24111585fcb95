// What the keys', timers' and parameters' exports pass to the WMI connection: flags, paths and the
// objects that are written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/keys/parameters_test.h"
#include "tests/control/keys/timer_table.h"
#include "tests/support/text.h"
#include "tests/wmi/recorded_services.h"

namespace quista::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// Shallow, forward only, and without waiting for the result.
constexpr LONG kClassFlags = 0x31;
constexpr LONG kQueryFlags = 0x30;

class SteeringCallsTest : public ParametersTest {
  protected:
    SteeringCallsTest() { host.add(timerInstance()); }

    void expectCall(std::size_t index, const std::wstring& method, const std::wstring& target,
                    LONG flags, const std::wstring& detail = L"") const {
        ASSERT_LT(index, services.calls().size());
        const ServiceCall& call = services.calls()[index];
        EXPECT_EQ(call.method, method);
        EXPECT_EQ(call.target, target);
        EXPECT_EQ(call.flags, flags);
        EXPECT_EQ(call.detail, detail);
    }
    std::string inputOf(std::size_t index) const {
        return index < services.calls().size() ? narrow(services.calls()[index].input) : "";
    }

    RecordedServices services;
};

TEST_F(SteeringCallsTest, DriverKey) {
    char key[] = "ABCDEFGH";
    EXPECT_EQ(KORVADSMSetPRKey(key), DSM_SUCCESS);
    EXPECT_EQ(services.calls().size(), 2u);
    expectCall(0, L"CreateInstanceEnum", kDsmClass, kClassFlags);
    expectCall(1, L"PutInstance", L"", 0);
    EXPECT_THAT(inputOf(1), HasSubstr("ReservationKey = {65, 66, 67, 68, 69, 70, 71, 72};"));
}

TEST_F(SteeringCallsTest, LunKey) {
    wchar_t serialNumber[] = L"kvA7";
    const GuardedBuffer key(8);
    EXPECT_EQ(KORVADSMGetPRKey(key.data(), serialNumber), DSM_ERROR);
    EXPECT_EQ(services.calls().size(), 1u);
    expectCall(0, L"ExecQuery", L"SELECT * FROM KORVADSM_LUNINFO WHERE SerialNumber = \"kvA7\"",
               kQueryFlags, L"WQL");
}

TEST_F(SteeringCallsTest, Timers) {
    unsigned long count = 0;
    EXPECT_EQ(DSMGetRetryCount(&count), DSM_SUCCESS);
    EXPECT_EQ(DSMSetRetryCount(500), DSM_SUCCESS);
    EXPECT_EQ(services.calls().size(), 3u);
    expectCall(0, L"CreateInstanceEnum", kTimerClass, kClassFlags);
    expectCall(1, L"CreateInstanceEnum", kTimerClass, kClassFlags);
    expectCall(2, L"PutInstance", L"", 0);
    EXPECT_THAT(inputOf(2),
                AllOf(HasSubstr("PathVerifyEnabled = 1;"),
                      HasSubstr("PathVerificationPeriod = 31;"), HasSubstr("PDORemovePeriod = 22;"),
                      HasSubstr("RetryCount = 500;"), HasSubstr("RetryInterval = 4;")));
}

TEST_F(SteeringCallsTest, ParametersAreRead) {
    EXPECT_EQ(get(), DSM_SUCCESS);
    EXPECT_EQ(services.calls().size(), 2u);
    expectCall(0, L"CreateInstanceEnum", kDsmClass, kClassFlags);
    expectCall(1, L"CreateInstanceEnum", kRegistrationClass, kClassFlags);
}

// The method gets the entry's own counters with three of them changed.
TEST_F(SteeringCallsTest, ParametersAreWritten) {
    fill(3, 11, 22, 33);
    EXPECT_EQ(set(), DSM_SUCCESS);
    EXPECT_EQ(services.calls().size(), 5u);
    expectCall(0, L"CreateInstanceEnum", kDsmClass, kClassFlags);
    expectCall(1, L"PutInstance", L"", 0);
    EXPECT_THAT(inputOf(1), HasSubstr("EventLogLevel = 3;"));
    expectCall(2, L"CreateInstanceEnum", kRegistrationClass, kClassFlags);
    expectCall(3, L"GetObject", kMethodsClass, 0);
    expectCall(4, L"ExecMethod", L"MPIO_WMI_METHODS.InstanceName=\"ROOT\\\\MPIO\\\\0000_0\"", 0,
               L"SetDsmCounters");
    EXPECT_THAT(inputOf(4), AllOf(HasSubstr("DSMcontext = \"18446738026475491344\";"),
                                  HasSubstr("PathVerifyEnabled = 101;"),
                                  HasSubstr("PathVerificationPeriod = 102;"),
                                  HasSubstr("PDORemovePeriod = 11;"), HasSubstr("RetryCount = 22;"),
                                  HasSubstr("RetryInterval = 33;"), HasSubstr("Reserved32 = 106;"),
                                  HasSubstr("Reserved64 = \"107\";")));
}

}  // namespace
}  // namespace quista::test

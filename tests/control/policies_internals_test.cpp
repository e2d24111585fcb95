// The policy object that the method of MPIO's operations receives.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/policies_test.h"
#include "tests/support/console_capture.h"
#include "tests/support/text.h"
#include "tests/wmi/recorded_services.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class PolicyInputTest : public PoliciesTest {
  protected:
    PolicyInputTest() {
        setMethodResult(kOperationsClass, L"DsmSetLoadBalancePolicy", L"Status", 0);
    }

    /// The MOF text of the method's input.
    std::string inputFor(unsigned long number) {
        const RecordedServices services;
        _DSM_LOAD_BALANCE_TYPE policy{number};
        ConsoleCapture console;
        EXPECT_EQ(KORVADSMSetDiskPolicy(serial, &policy), DSM_SUCCESS);
        static_cast<void>(console.stop());
        if (services.calls().empty()) return {};
        const ServiceCall& last = services.calls().back();
        EXPECT_EQ(last.target, L"DSM_LB_Operations.InstanceName=\"D\\\\1\"");
        EXPECT_EQ(last.detail, L"DSMSetLoadBalancePolicy");
        return narrow(last.input);
    }
};

/// The values of a property in a MOF text, in order.
std::vector<std::string> valuesOf(const std::string& mof, const std::string& property) {
    std::vector<std::string> values;
    const std::string assignment = "\t" + property + " = ";
    for (std::size_t at = mof.find(assignment); at != std::string::npos;
         at = mof.find(assignment, at + 1)) {
        const std::size_t begin = at + assignment.size();
        values.push_back(mof.substr(begin, mof.find(';', begin) - begin));
    }
    return values;
}

TEST_F(PolicyInputTest, FirstPathIsTheOnlyPrimaryOneUnderFailover) {
    addAndOpen({queriedPolicy(L"D\\1", {0, 1, 1}), operations(L"D\\1")});
    const std::string input = inputFor(1);
    EXPECT_THAT(input, HasSubstr("\tLoadBalancePolicy = 1;"));
    EXPECT_THAT(valuesOf(input, "PrimaryPath"), ElementsAre("1", "0", "0"));
    EXPECT_THAT(valuesOf(input, "PathWeight"), ElementsAre("0", "1", "2"));
    EXPECT_THAT(valuesOf(input, "DsmPathId"), ElementsAre("\"256\"", "\"257\"", "\"258\""));
}

TEST_F(PolicyInputTest, OtherPoliciesLeaveThePathsAsMpioReportedThem) {
    addAndOpen({queriedPolicy(L"D\\1", {0, 1, 7}), operations(L"D\\1")});
    for (const unsigned long policy : {2ul, 7ul, 0xFFFFFFFFul}) {
        const std::string input = inputFor(policy);
        EXPECT_THAT(input, HasSubstr("\tLoadBalancePolicy = " + std::to_string(policy) + ";"));
        EXPECT_THAT(valuesOf(input, "PrimaryPath"), ElementsAre("0", "1", "7"));
    }
}

TEST_F(PolicyInputTest, PathsBeyondTheCountStayAsTheyAre) {
    addAndOpen({operations(L"D\\1")});
    host.add(MofObject(kQueryClass)
                 .text(L"InstanceName", L"D\\1")
                 .object(L"LoadBalancePolicy",
                         policyObject(3)
                             .number(L"DSMPathCount", 1)
                             .objects(L"DSM_Paths",
                                      {MofObject(kPolicyPathClass).number(L"PrimaryPath", 0),
                                       MofObject(kPolicyPathClass).number(L"PrimaryPath", 1)})));
    EXPECT_THAT(valuesOf(inputFor(1), "PrimaryPath"), ElementsAre("1", "1"));
}

TEST_F(PolicyInputTest, CountBeyondThePathsIsBoundByThem) {
    addAndOpen({operations(L"D\\1")});
    for (const unsigned long count : {50ul, 0x80000000ul, 0xFFFFFFFFul}) {
        host->removeInstances(kWmi, kQueryClass);
        host.add(
            MofObject(kQueryClass)
                .text(L"InstanceName", L"D\\1")
                .object(L"LoadBalancePolicy",
                        policyObject(3)
                            .number(L"DSMPathCount", count)
                            .objects(L"DSM_Paths",
                                     {MofObject(kPolicyPathClass).number(L"PrimaryPath", 0),
                                      MofObject(kPolicyPathClass).number(L"PrimaryPath", 1)})));
        EXPECT_THAT(valuesOf(inputFor(1), "PrimaryPath"), ElementsAre("1", "0")) << count;
    }
}

TEST_F(PolicyInputTest, NoPathsArePutBackAsNone) {
    addAndOpen({operations(L"D\\1")});
    host.add(MofObject(kQueryClass)
                 .text(L"InstanceName", L"D\\1")
                 .object(L"LoadBalancePolicy", policyObject(3).number(L"DSMPathCount", 2)));
    EXPECT_THAT(valuesOf(inputFor(1), "PrimaryPath"), ElementsAre());
}

TEST_F(PolicyInputTest, PrimaryPathKeepsItsType) {
    addAndOpen({queriedPolicy(L"D\\1", {7, 7}), operations(L"D\\1")});
    // A value that comes without one is put back without one.
    host.replaceValue(kPolicyPathClass, L"PrimaryPath", Value::bits(VT_NULL).get(), 1, 1);
    host.replaceValue(kPolicyPathClass, L"PrimaryPath", Value::boolean(-1).get(), 2, 1);
    const std::string input = inputFor(1);
    EXPECT_EQ(valuesOf(input, "PrimaryPath").back(), "0");
    EXPECT_EQ(input.find("PrimaryPath = 1"), std::string::npos);
}

// ---- What the connection is asked

using PolicyCallsTest = PolicyInputTest;

/// Shallow, forward only, and without waiting for the result.
constexpr LONG kClassFlags = 0x31;

TEST_F(PolicyCallsTest, DefaultPolicy) {
    addAndOpen({MofObject(kDsmClass).text(L"InstanceName", L"K").number(kDefaultPolicy, 2)});
    const RecordedServices services;
    int policy = 0;
    EXPECT_EQ(KORVADSMSetDefaultLBP(4), DSM_SUCCESS);
    EXPECT_EQ(KORVADSMGetDefaultLBP(&policy), DSM_SUCCESS);
    EXPECT_EQ(policy, 4);
    ASSERT_EQ(services.calls().size(), 3u);
    const ServiceCall enumeration{L"CreateInstanceEnum", kDsmClass, L"", kClassFlags, L"", L""};
    EXPECT_EQ(services.calls()[0], enumeration);
    EXPECT_EQ(services.calls()[1].method, L"PutInstance");
    EXPECT_EQ(services.calls()[1].flags, 0);
    EXPECT_EQ(services.calls()[2], enumeration);
}

TEST_F(PolicyCallsTest, DiskPolicy) {
    addAndOpen({queriedPolicy(L"D\\1", {1}), operations(L"D\\1")});
    const RecordedServices services;
    _DSM_LOAD_BALANCE_TYPE policy{2};
    const ConsoleCapture console;
    EXPECT_EQ(KORVADSMSetDiskPolicy(serial, &policy), DSM_SUCCESS);
    ASSERT_GE(services.calls().size(), 2u);
    EXPECT_EQ(services.calls()[1],
              (ServiceCall{L"CreateInstanceEnum", kQueryClass, L"", kClassFlags, L"", L""}));
}

TEST_F(PolicyCallsTest, SupportedPolicies) {
    addAndOpen({supportedPolicies(L"D\\1", {})});
    const RecordedServices services;
    _LBP_DESCRIPTOR_LIST list{};
    EXPECT_EQ(KORVADSMGetDiskPolicies(serial, &list), DSM_SUCCESS);
    ASSERT_EQ(services.calls().size(), 2u);
    EXPECT_EQ(services.calls()[1],
              (ServiceCall{L"CreateInstanceEnum", kSupportedClass, L"", kClassFlags, L"", L""}));
}

}  // namespace
}  // namespace quista::test

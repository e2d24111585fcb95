// The policy of newly claimed LUNs: written to every instance of the driver, read from the last.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/policies_test.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

constexpr const char* kSetNext = "KORVADSMSetDefaultLBP: IEnumWbemClassObject::Next";
constexpr const char* kGetNext = "KORVADSMGetDefaultLBP: IEnumWbemClassObject::Next";
constexpr const char* kSetGet = "KORVADSMSetDefaultLBP::Get(DefaultLBP)";
constexpr const char* kGetGet = "KORVADSMGetDefaultLBP::Get(DefaultLBP)";
constexpr const char* kGetEnum = "KORVADSMGetDefaultLBP:: Unable to create KORVADSM instance";

MofObject dsm(const std::wstring& name, std::int64_t policy) {
    return MofObject(kDsmClass)
        .text(L"InstanceName", name)
        .boolean(L"Active", true)
        .number(kDefaultPolicy, policy)
        .number(L"EventLogLevel", 2);
}

class DefaultPolicyTest : public PoliciesTest {
  protected:
    /// The policies of the driver's instances, in order.
    std::vector<std::string> storedPolicies() const {
        std::vector<std::string> policies;
        const std::string dump = narrow(host->dump());
        const std::string property = "\tDefaultLoadBalancePolicy = ";
        for (std::size_t at = dump.find(property); at != std::string::npos;
             at = dump.find(property, at + 1)) {
            const std::size_t begin = at + property.size();
            policies.push_back(dump.substr(begin, dump.find(';', begin) - begin));
        }
        return policies;
    }
};

// ---- Setting

TEST_F(DefaultPolicyTest, SettingWritesTheInstance) {
    addAndOpen({dsm(L"a", 2)});
    const LiveObjectsCheck live(host);
    const AllocationScope scope;
    EXPECT_EQ(KORVADSMSetDefaultLBP(5), DSM_SUCCESS);
    expectLog({{kSetNext, kEnd}});
    EXPECT_THAT(storedPolicies(), ElementsAre("5"));
    EXPECT_THAT(calls(), ElementsAre(L"CreateInstanceEnum KORVADSM", L"Next KORVADSM",
                                     L"Get KORVADSM.DefaultLoadBalancePolicy",
                                     L"Put KORVADSM.DefaultLoadBalancePolicy",
                                     L"PutInstance KORVADSM", L"Next KORVADSM"));
    EXPECT_TRUE(scope.survivors().empty());
    EXPECT_NE(narrow(host->dump()).find("EventLogLevel = 2"), std::string::npos);
}

TEST_F(DefaultPolicyTest, SettingWritesEveryInstance) {
    addAndOpen({dsm(L"a", 2), dsm(L"b", 3), dsm(L"c", 4)});
    const LiveObjectsCheck live(host);
    EXPECT_EQ(KORVADSMSetDefaultLBP(6), DSM_SUCCESS);
    expectLog({{kSetNext, kEnd}});
    EXPECT_THAT(storedPolicies(), ElementsAre("6", "6", "6"));
}

TEST_F(DefaultPolicyTest, PolicyIsNotCheckedAgainstTheKnownNumbers) {
    addAndOpen({dsm(L"a", 2)});
    for (const int policy : {0, 8, 0x7FFFFFFF, -1}) {
        EXPECT_EQ(KORVADSMSetDefaultLBP(policy), DSM_SUCCESS);
        EXPECT_THAT(storedPolicies(), ElementsAre(std::to_string(static_cast<unsigned>(policy))));
    }
}

TEST_F(DefaultPolicyTest, PropertyWithoutValueKeepsNone) {
    addAndOpen({dsm(L"a", 2).null(kDefaultPolicy)});
    EXPECT_EQ(KORVADSMSetDefaultLBP(5), DSM_SUCCESS) << "the VARIANT keeps its type";
    EXPECT_EQ(countCalls(L"PutInstance KORVADSM"), 1u);
    int policy = 9;
    EXPECT_EQ(KORVADSMGetDefaultLBP(&policy), DSM_SUCCESS);
    EXPECT_EQ(policy, 0);
}

TEST_F(DefaultPolicyTest, PropertyIsPutUnderTheTypeItCameWith) {
    addAndOpen({});
    host->clear();
    host.loadText(
        L"class KORVADSM { [key] string InstanceName; sint32 DefaultLoadBalancePolicy; };");
    host.add(MofObject(kDsmClass).text(L"InstanceName", L"a").number(kDefaultPolicy, 2));
    EXPECT_EQ(KORVADSMSetDefaultLBP(-7), DSM_SUCCESS);
    EXPECT_THAT(storedPolicies(), ElementsAre("-7"));
}

TEST_F(DefaultPolicyTest, SettingWithoutInstanceFails) {
    addAndOpen({});
    EXPECT_EQ(KORVADSMSetDefaultLBP(5), DSM_SET_DEFAULT_LBP_FAILED);
    expectLog({{kSetNext, kEnd}});
}

TEST_F(DefaultPolicyTest, SettingWithoutSessionFailsWithoutALine) {
    host.add(dsm(L"a", 2));
    EXPECT_EQ(KORVADSMSetDefaultLBP(5), DSM_SET_DEFAULT_LBP_FAILED);
    expectLog({});
}

TEST_F(DefaultPolicyTest, FailedEnumerationLeavesNoLineWhenSetting) {
    addAndOpen({dsm(L"a", 2)});
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failEnumeration(kDsmClass, resultOf(code));
        EXPECT_EQ(KORVADSMSetDefaultLBP(5), DSM_SET_DEFAULT_LBP_FAILED);
        expectLog({});
    }
    host->clearFaults();
    host.failEnumeration(kDsmClass, S_OK);
    EXPECT_EQ(KORVADSMSetDefaultLBP(5), DSM_SET_DEFAULT_LBP_FAILED);
    expectLog({});
}

TEST_F(DefaultPolicyTest, FailureHalfWayLeavesTheEarlierOnesChanged) {
    addAndOpen({dsm(L"a", 2), dsm(L"b", 3), dsm(L"c", 4)});
    host.failGet(kDsmClass, kDefaultPolicy, resultOf(kNotFoundCode), 2, 1);
    const LiveObjectsCheck live(host);
    EXPECT_EQ(KORVADSMSetDefaultLBP(6), DSM_SUCCESS);
    expectLog({{kSetGet, kNotFoundCode}});
    EXPECT_THAT(storedPolicies(), ElementsAre("6", "3", "4"));
}

TEST_F(DefaultPolicyTest, FailureAtTheFirstInstanceChangesNothing) {
    addAndOpen({dsm(L"a", 2), dsm(L"b", 3)});
    host.failPut(kDsmClass, kDefaultPolicy, resultOf(0x80041005));
    EXPECT_EQ(KORVADSMSetDefaultLBP(6), DSM_SET_DEFAULT_LBP_FAILED);
    expectLog({{"KORVADSMSetDefaultLBP::Put(DefaultLBP)", 0x80041005}});
    EXPECT_THAT(storedPolicies(), ElementsAre("2", "3"));
}

TEST_F(DefaultPolicyTest, EachCallFailsWhenSetting) {
    addAndOpen({dsm(L"a", 2), dsm(L"b", 3)});
    failEachCall(
        [] { return KORVADSMSetDefaultLBP(6); },
        [](const std::wstring& call, unsigned occurrence) -> Outcome {
            const unsigned long status = occurrence == 1 ? DSM_SET_DEFAULT_LBP_FAILED : DSM_SUCCESS;
            if (call.starts_with(L"CreateInstanceEnum")) return {status};
            if (call.starts_with(L"Next")) return {status, {{kSetNext, kResult}}};
            if (call.starts_with(L"Get")) return {status, {{kSetGet, kResult}}};
            if (call.starts_with(L"PutInstance")) {
                return {status, {{"KORVADSMSetDefaultLBP::PutInstance(DefaultLBP)", kResult}}};
            }
            return {status, {{"KORVADSMSetDefaultLBP::Put(DefaultLBP)", kResult}}};
        });
}

// ---- Getting

TEST_F(DefaultPolicyTest, LastInstanceWins) {
    addAndOpen({dsm(L"a", 2), dsm(L"b", 0xFFFFFFFF), dsm(L"c", 4)});
    const LiveObjectsCheck live(host);
    const AllocationScope scope;
    const GuardedBuffer policy(sizeof(int));
    EXPECT_EQ(KORVADSMGetDefaultLBP(policy.as<int>()), DSM_SUCCESS);
    EXPECT_EQ(*policy.as<int>(), 4);
    expectLog({{kGetNext, kEnd}});
    EXPECT_EQ(countCalls(L"Get KORVADSM.DefaultLoadBalancePolicy"), 3u);
    EXPECT_TRUE(scope.survivors().empty());
}

TEST_F(DefaultPolicyTest, PolicyIsTheWholeNumber) {
    addAndOpen({dsm(L"a", 0xFFFFFFFF)});
    int policy = 0;
    EXPECT_EQ(KORVADSMGetDefaultLBP(&policy), DSM_SUCCESS);
    EXPECT_EQ(policy, -1);
}

TEST_F(DefaultPolicyTest, NothingIsWrittenWithoutAnInstance) {
    addAndOpen({});
    const GuardedBuffer policy(sizeof(int));
    EXPECT_EQ(KORVADSMGetDefaultLBP(policy.as<int>()), DSM_GET_DEFAULT_LBP_FAILED);
    EXPECT_TRUE(policy.untouched());
    expectLog({{kGetNext, kEnd}});
}

TEST_F(DefaultPolicyTest, NothingIsWrittenWithoutASession) {
    host.add(dsm(L"a", 2));
    const GuardedBuffer policy(sizeof(int));
    EXPECT_EQ(KORVADSMGetDefaultLBP(policy.as<int>()), DSM_GET_DEFAULT_LBP_FAILED);
    EXPECT_TRUE(policy.untouched());
    expectLog({{kGetEnum, kNullPointer}});
}

TEST_F(DefaultPolicyTest, UnreadableLaterInstanceFailsAllTheSame) {
    addAndOpen({dsm(L"a", 2), dsm(L"b", 3)});
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failGet(kDsmClass, kDefaultPolicy, resultOf(code), 2, 1);
        int policy = 0;
        EXPECT_EQ(KORVADSMGetDefaultLBP(&policy), DSM_GET_DEFAULT_LBP_FAILED);
        EXPECT_EQ(policy, 2);
        expectLog(failureOf(kGetGet, code));
    }
}

TEST_F(DefaultPolicyTest, EachCallFailsWhenGetting) {
    addAndOpen({dsm(L"a", 2), dsm(L"b", 3)});
    failEachCall(
        [] {
            int policy = 0;
            return KORVADSMGetDefaultLBP(&policy);
        },
        [](const std::wstring& call, unsigned occurrence) -> Outcome {
            if (call.starts_with(L"CreateInstanceEnum")) {
                return {DSM_GET_DEFAULT_LBP_FAILED, {{kGetEnum, kResult}}};
            }
            if (call.starts_with(L"Get")) {
                return {DSM_GET_DEFAULT_LBP_FAILED, {{kGetGet, kResult}}};
            }
            return {occurrence == 1 ? DSM_GET_DEFAULT_LBP_FAILED : DSM_SUCCESS,
                    {{kGetNext, kResult}}};
        });
}

TEST_F(DefaultPolicyTest, WhatWasSetIsReadBack) {
    addAndOpen({dsm(L"a", 2), dsm(L"b", 3)});
    EXPECT_EQ(KORVADSMSetDefaultLBP(7), DSM_SUCCESS);
    int policy = 0;
    EXPECT_EQ(KORVADSMGetDefaultLBP(&policy), DSM_SUCCESS);
    EXPECT_EQ(policy, 7);
}

}  // namespace
}  // namespace quista::test

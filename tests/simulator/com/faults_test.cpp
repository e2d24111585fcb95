// Fault plan, occurrences and trace on their own.
#include <windows.h>

#include <wbemcli.h>

#include <gtest/gtest.h>
#include <vector>

#include "simulator/faults/call_trace.h"
#include "simulator/faults/fault_plan.h"
#include "simulator/faults/occurrences.h"

namespace quista::test {
namespace {

using simulator::Call;
using simulator::CallTrace;
using simulator::Fault;
using simulator::FaultPlan;
using simulator::Occurrences;

constexpr Call kGet{.interfaceName = L"IWbemClassObject",
                    .method = L"Get",
                    .className = L"Disk",
                    .property = L"Size"};

std::vector<bool> nextFive(Occurrences occurrences) {
    std::vector<bool> meant;
    for (int i = 0; i < 5; ++i) meant.push_back(occurrences.next());
    return meant;
}

TEST(OccurrencesTest, Next_FirstAndCount_MeansThatStretch) {
    EXPECT_EQ(nextFive({1, 1}), (std::vector{true, false, false, false, false}));
    EXPECT_EQ(nextFive({2, 2}), (std::vector{false, true, true, false, false}));
    EXPECT_EQ(nextFive({3, 0}), (std::vector{false, false, true, true, true}));
}

TEST(OccurrencesTest, Next_FirstOfZero_MeansTheFirst) {
    EXPECT_EQ(nextFive({0, 1}), (std::vector{true, false, false, false, false}));
}

TEST(FaultPlanTest, Strike_NothingPlanned_LetsTheCallPass) {
    FaultPlan plan;
    EXPECT_EQ(plan.strike(kGet), std::nullopt);
}

TEST(FaultPlanTest, Strike_EmptyTexts_MatchEveryCall) {
    FaultPlan plan;
    plan.add(Fault{.result = E_ABORT});
    EXPECT_EQ(plan.strike(kGet), E_ABORT);
    EXPECT_EQ(plan.strike(kGet), std::nullopt);
}

TEST(FaultPlanTest, Strike_OtherCase_Matches) {
    FaultPlan plan;
    plan.add(Fault{L"IWBEMCLASSOBJECT", L"get", L"dISK", L"SIZE", 1, 1, E_ABORT});
    EXPECT_EQ(plan.strike(kGet), E_ABORT);
}

TEST(FaultPlanTest, Strike_AnyTextDiffers_DoesNotMatch) {
    FaultPlan plan;
    plan.add(Fault{.interfaceName = L"IWbemServices"});
    plan.add(Fault{.method = L"Put"});
    plan.add(Fault{.className = L"Dis"});
    plan.add(Fault{.property = L"Sizes"});
    EXPECT_EQ(plan.strike(kGet), std::nullopt);
}

TEST(FaultPlanTest, Strike_SecondOccurrence_CountsMatchingCallsOnly) {
    FaultPlan plan;
    plan.add(Fault{.property = L"Size", .occurrence = 2, .result = E_ABORT});
    Call other = kGet;
    other.property = L"Name";
    EXPECT_EQ(plan.strike(kGet), std::nullopt);
    EXPECT_EQ(plan.strike(other), std::nullopt);
    EXPECT_EQ(plan.strike(kGet), E_ABORT);
}

TEST(FaultPlanTest, Strike_TwoFaultsDue_TheFirstAddedWins) {
    FaultPlan plan;
    plan.add(Fault{.count = 1, .result = E_ABORT});
    plan.add(Fault{.count = 0, .result = E_FAIL});
    EXPECT_EQ(plan.strike(kGet), E_ABORT);
    EXPECT_EQ(plan.strike(kGet), E_FAIL);
}

TEST(FaultPlanTest, OverrideFor_ClassAndProperty_GivesTheValue) {
    FaultPlan plan;
    VARIANT value{};
    value.vt = VT_I4;
    value.lVal = 5;
    plan.addOverride({L"disk", L"size", 2, 1}, value);
    EXPECT_EQ(plan.overrideFor(L"Disk", L"Size"), nullptr);
    EXPECT_EQ(plan.overrideFor(L"Disk", L"Name"), nullptr);
    const VARIANT* found = plan.overrideFor(L"Disk", L"Size");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->lVal, 5);
    EXPECT_EQ(plan.overrideFor(L"Disk", L"Size"), nullptr);
}

TEST(FaultPlanTest, Clear_ForgetsFaultsAndOverrides) {
    FaultPlan plan;
    plan.add(Fault{});
    plan.addOverride({}, VARIANT{});
    plan.clear();
    EXPECT_EQ(plan.strike(kGet), std::nullopt);
    EXPECT_EQ(plan.overrideFor(L"Disk", L"Size"), nullptr);
}

TEST(CallTraceTest, Record_Get_NamesThePropertyAsDetail) {
    CallTrace trace;
    trace.record(kGet, E_ABORT);
    ASSERT_EQ(trace.records().size(), 1U);
    EXPECT_EQ(trace.records()[0].interfaceName, L"IWbemClassObject");
    EXPECT_EQ(trace.records()[0].method, L"Get");
    EXPECT_EQ(trace.records()[0].className, L"Disk");
    EXPECT_EQ(trace.records()[0].detail, L"Size");
    EXPECT_EQ(trace.records()[0].result, E_ABORT);
}

TEST(CallTraceTest, SetEnabled_Off_RecordsNothing) {
    CallTrace trace;
    trace.setEnabled(false);
    trace.record(kGet, S_OK);
    EXPECT_TRUE(trace.records().empty());
    trace.setEnabled(true);
    trace.record(kGet, S_OK);
    EXPECT_EQ(trace.records().size(), 1U);
}

}  // namespace
}  // namespace quista::test

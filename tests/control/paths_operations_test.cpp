// The six path operations: their methods and arguments, the guard of weighted paths, and the
// outcome of methods with inputs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/paths_test.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class PathOperationTest : public PathsTest, public testing::WithParamInterface<PathOperation> {
  protected:
    PathOperationTest() { setReturnCode(GetParam().method, 0); }

    void openWithPath() { openWith({lunOfPaths(L"S1", {1, 2})}); }
    std::wstring call(const wchar_t* step) const {
        return std::wstring(step) + L" KORVADSM_LUNINFO." + GetParam().method;
    }
    /// A failing call: its status and its whole log.
    void expectOutcome(unsigned long status, const LogLines& lines) {
        const LiveObjectsCheck live(host);
        const AllocationScope scope;
        EXPECT_EQ(GetParam().run(2), status);
        expectLog(lines);
        EXPECT_THAT(scope.survivors(), IsEmpty());
    }
    /// As expectOutcome, with a step that fails in several ways.
    template <typename Fail>
    void expectFailures(unsigned long status, const std::vector<std::string>& places, Fail fail) {
        openWithPath();
        for (const unsigned long code : kFailures) {
            SCOPED_TRACE(code);
            host->clearFaults();
            fail(resultOf(code));
            LogLines lines;
            for (const std::string& place : places) {
                for (const LogLine& line : failureOf(place, code)) lines.push_back(line);
            }
            expectOutcome(status, lines);
        }
    }
    void failObject(const wchar_t* method, HRESULT result) {
        host.fail(L"IWbemClassObject", method, result);
    }
};

INSTANTIATE_TEST_SUITE_P(Exports, PathOperationTest, testing::ValuesIn(kPathOperations));

TEST_P(PathOperationTest, MethodOfTheOwningLunIsCalled) {
    openWithPath();
    expectOutcome(DSM_SUCCESS, {});
    EXPECT_THAT(executed(),
                ElementsAre(L"KORVADSM_LUNINFO.InstanceName=\"MPIO\\\\Disk&Ven_KORVA\\\\S1\""));
    EXPECT_EQ(countCalls(call(L"GetMethod")), 1u);
    EXPECT_EQ(countCalls(call(L"ExecMethod")), 1u);
}

TEST_P(PathOperationTest, IdentifierComesFirst) {
    openWithPath();
    EXPECT_EQ(GetParam().run(2), DSM_SUCCESS);
    std::vector<std::wstring> puts;
    for (const std::wstring& made : calls()) {
        if (made.starts_with(L"Put")) puts.push_back(made);
    }
    if (std::wstring(GetParam().method) == L"SetWeight") {
        EXPECT_THAT(puts, ElementsAre(L"Put __PARAMETERS.DsmID", L"Put __PARAMETERS.Weight"));
    } else {
        EXPECT_THAT(puts, ElementsAre(L"Put __PARAMETERS.DsmID"));
    }
}

TEST_P(PathOperationTest, UnknownPathIsNotFound) {
    openWithPath();
    expectOutcome(DSM_SUCCESS, {});
    const LiveObjectsCheck live(host);
    EXPECT_EQ(GetParam().run(3), DSM_PATH_NOT_FOUND);
    expectLog({{kPathNext, kEnd}});
}

TEST_P(PathOperationTest, WithoutASessionNothingIsFound) {
    host.add(lunOfPaths(L"S1", {1, 2}));
    expectOutcome(DSM_PATH_NOT_FOUND, {{"CallMethodforITL::CreateInstanceEnum", kNullPointer}});
    openSession();
    closeSession();
    expectOutcome(DSM_PATH_NOT_FOUND, {{"CallMethodforITL::CreateInstanceEnum", kNullPointer}});
}

// ---- Policies

TEST_P(PathOperationTest, WeightedPathsRefuseActiveAndPassive) {
    for (const std::int64_t policy : {5ll, 0x105ll, 0xFFFFFF05ll}) {
        host.add(lunOfPaths(L"S1", {1, 2}).number(L"KorvaDSMLoadBalancePolicy", policy));
        openSession();
        if (GetParam().refusedByWeights) {
            expectOutcome(DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE, {});
            EXPECT_THAT(calls(), Not(Contains(L"GetObject KORVADSM_LUNINFO")));
            EXPECT_THAT(executed(), IsEmpty());
        } else {
            expectOutcome(DSM_SUCCESS, {});
            EXPECT_EQ(executed().size(), 1u);
        }
        closeSession();
        host->removeInstances(kWmi, kLunClass);
    }
}

TEST_P(PathOperationTest, NoOtherPolicyRefuses) {
    setReturnCode(GetParam().method, 0x3FFFFFFF);
    for (const std::int64_t policy : {0ll, 1ll, 2ll, 3ll, 4ll, 6ll, 7ll, 0x500ll, 0x106ll}) {
        host.add(lunOfPaths(L"S1", {1, 2}).number(L"KorvaDSMLoadBalancePolicy", policy));
        openSession();
        EXPECT_NE(GetParam().run(2), DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE);
        EXPECT_EQ(countCalls(call(L"GetMethod")), 1u);
        closeSession();
        host->removeInstances(kWmi, kLunClass);
    }
}

TEST_P(PathOperationTest, GuardLooksAtTheLunThatOwnsThePath) {
    openWith({lunOfPaths(L"S1", {1}).number(L"KorvaDSMLoadBalancePolicy", 5),
              lunOfPaths(L"S2", {2}).number(L"KorvaDSMLoadBalancePolicy", 2)});
    expectOutcome(DSM_SUCCESS, {});
}

// ---- Return codes

TEST_P(PathOperationTest, ReturnCodeFromWhichOnItIsARefusal) {
    openWithPath();
    const std::pair<unsigned long, unsigned long> outcomes[] = {
        {0, DSM_SUCCESS},        {1, DSM_SUCCESS},          {14, DSM_SUCCESS},
        {0x103, DSM_SUCCESS},    {0x3FFFFFFF, DSM_SUCCESS}, {0x40000000, DSM_ERROR},
        {0x7FFFFFFF, DSM_ERROR}, {0x80000000, DSM_ERROR},   {0xC0000001, DSM_ERROR},
        {0xFFFFFFFF, DSM_ERROR},
    };
    for (const auto& [code, status] : outcomes) {
        SCOPED_TRACE(code);
        host->clearMethodResults();
        setReturnCode(GetParam().method, code);
        expectOutcome(status, {});
    }
}

TEST_P(PathOperationTest, NoOutputIsASuccess) {
    openWithPath();
    host->setMethodWithoutOutput(kLunClass, GetParam().method);
    expectOutcome(DSM_SUCCESS, {});
    EXPECT_EQ(countCalls(L"GetObjectText __PARAMETERS"), 0u);
}

// ---- Failures

TEST_P(PathOperationTest, FailedClassObject) {
    expectFailures(DSM_ERROR, {"CallMethodforITL::GetObject"},
                   [&](HRESULT result) { host.failGetObject(kLunClass, result); });
}

TEST_P(PathOperationTest, MissingClassObject) {
    openWithPath();
    host.failGetObject(kLunClass, S_OK);
    expectOutcome(DSM_ERROR, {{"CallMethodforITL::GetObject", kNullPointer}});
}

TEST_P(PathOperationTest, UnknownMethod) {
    expectFailures(DSM_ERROR, {"CallMethodforITL::GetMethod"},
                   [&](HRESULT result) { failObject(L"GetMethod", result); });
}

TEST_P(PathOperationTest, FailedSpawn) {
    expectFailures(DSM_ERROR, {"CallMethodforITL::SpawnInstance"},
                   [&](HRESULT result) { failObject(L"SpawnInstance", result); });
}

TEST_P(PathOperationTest, SpawnWithoutAnObject) {
    openWithPath();
    failObject(L"SpawnInstance", S_OK);
    expectOutcome(DSM_ERROR, {{"CallMethodforITL::SpawnInstance", kNullPointer}});
}

TEST_P(PathOperationTest, FailedPutLeavesTwoLinesAndExecutesNothing) {
    expectFailures(DSM_WMI_FAILURE, {"CallMethodforITL::Put", "CallMethodforITL::ExecMethod"},
                   [&](HRESULT result) { failObject(L"Put", result); });
    EXPECT_THAT(executed(), IsEmpty());
}

TEST_P(PathOperationTest, FailedExecutionLeavesNoLine) {
    expectFailures(DSM_ERROR, {},
                   [&](HRESULT result) { host.failMethod(kLunClass, GetParam().method, result); });
}

TEST_P(PathOperationTest, FailedObjectText) {
    expectFailures(DSM_ERROR, {"CallMethodforITL::GetObjectText"},
                   [&](HRESULT result) { failObject(L"GetObjectText", result); });
}

TEST_P(PathOperationTest, FailedReturnCode) {
    expectFailures(DSM_WMI_FAILURE, {"CallMethodforITL::Get(ReturnCode)"},
                   [&](HRESULT result) { host.failGet(L"", L"ReturnCode", result); });
}

class PathWeightTest : public PathsTest {};

TEST_F(PathWeightTest, FailedWeightEndsTheFilling) {
    openWith({lunOfPaths(L"S1", {1})});
    host.failPut(L"", L"Weight", resultOf(0x80041005));
    EXPECT_EQ(KORVADSMSetPathWeight(1, 3), DSM_WMI_FAILURE);
    expectLog(
        {{"CallMethodforITL::Put", 0x80041005}, {"CallMethodforITL::ExecMethod", 0x80041005}});
    EXPECT_EQ(countCalls(L"Put __PARAMETERS.DsmID"), 1u);
    EXPECT_THAT(executed(), IsEmpty());
}

TEST_F(PathWeightTest, WeightReachesThePath) {
    openWith({lunOfPaths(L"S1", {1, 2}).number(L"KorvaDSMLoadBalancePolicy", 5)});
    EXPECT_EQ(KORVADSMSetPathWeight(2, 0xFFFFFFFE), DSM_SUCCESS);
    EXPECT_THAT(host->dump(), testing::HasSubstr(L"PathWeight = 4294967294"));
}

TEST_F(PathWeightTest, MethodThatTheClassLacks) {
    openWith({});
    host->clear();
    host.loadText(
        L"class KORVADSM_PATHINFO { sint32 DsmId; };\n"
        L"class KORVADSM_LUNINFO { [key] string InstanceName; uint32 KorvaDSMLoadBalancePolicy;\n"
        L"    uint32 NumberOfPaths; KORVADSM_PATHINFO Paths[]; };\n");
    host.add(MofObject(kLunClass)
                 .text(L"InstanceName", L"S1")
                 .number(L"NumberOfPaths", 1)
                 .objects(L"Paths", {MofObject(kPathClass).number(L"DsmId", 1)}));
    const LiveObjectsCheck live(host);
    EXPECT_EQ(KORVADSMSetPathWeight(1, 3), DSM_ERROR);
    expectLog({{"CallMethodforITL::GetMethod", kNotFoundCode}});
}

}  // namespace
}  // namespace quista::test

// Path operations whose methods take no inputs: the driver's return code is the status.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/control/paths_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PathWithoutInputsTest : public ControlTest {
  protected:
    PathWithoutInputsTest() {
        host->clear();
        host.loadText(
            L"class KORVADSM_PATHINFO { sint32 DsmId; };\n"
            L"class KORVADSM_LUNINFO {\n"
            L"    [key] string InstanceName;\n"
            L"    uint32 KorvaDSMLoadBalancePolicy;\n"
            L"    uint32 NumberOfPaths;\n"
            L"    KORVADSM_PATHINFO Paths[];\n"
            L"    [Implemented] void SetEnabled([out] uint32 ReturnCode);\n"
            L"    [Implemented] void SetActive([out] uint32 ReturnCode);\n"
            L"    [Implemented] void SetDisabled([out] uint32 Other);\n"
            L"};\n");
        host.add(MofObject(kLunClass)
                     .text(L"InstanceName", L"LUN\\1")
                     .number(L"KorvaDSMLoadBalancePolicy", 1)
                     .number(L"NumberOfPaths", 1)
                     .objects(L"Paths", {MofObject(kPathClass).number(L"DsmId", 1)}));
        openSession();
    }

    void setReturnCode(unsigned long code) {
        host->clearMethodResults();
        setMethodResult(kLunClass, L"SetEnabled", L"ReturnCode", code);
    }
    void expectOutcome(unsigned long status, const LogLines& lines) {
        const LiveObjectsCheck live(host);
        const AllocationScope scope;
        EXPECT_EQ(KORVADSMEnablePath(1), status);
        EXPECT_EQ(log.take(), lines);
        EXPECT_THAT(scope.survivors(), IsEmpty());
    }
};

TEST_F(PathWithoutInputsTest, NothingIsSpawnedOrPut) {
    expectOutcome(DSM_SUCCESS, {});
    EXPECT_THAT(calls(),
                ElementsAre(L"CreateInstanceEnum KORVADSM_LUNINFO", L"Next KORVADSM_LUNINFO",
                            L"Get KORVADSM_LUNINFO.NumberOfPaths", L"Get KORVADSM_LUNINFO.Paths",
                            L"Get KORVADSM_LUNINFO.KORVADSMLoadBalancePolicy",
                            L"Get KORVADSM_PATHINFO.DsmId", L"Get KORVADSM_LUNINFO.InstanceName",
                            L"GetObject KORVADSM_LUNINFO", L"GetMethod KORVADSM_LUNINFO.SetEnabled",
                            L"ExecMethod KORVADSM_LUNINFO.SetEnabled",
                            L"GetObjectText __PARAMETERS", L"Get __PARAMETERS.ReturnCode"));
}

TEST_F(PathWithoutInputsTest, ReturnCodeIsTheStatus) {
    for (const unsigned long code :
         {0ul, 1ul, 12ul, 0x103ul, 0x3FFFFFFFul, 0x40000000ul, 0xC0000001ul, 0xFFFFFFFFul}) {
        setReturnCode(code);
        expectOutcome(code, {});
    }
}

TEST_F(PathWithoutInputsTest, NoOutputIsASuccess) {
    setReturnCode(7);
    host->setMethodWithoutOutput(kLunClass, L"SetEnabled");
    expectOutcome(DSM_SUCCESS, {});
}

TEST_F(PathWithoutInputsTest, ExecutionWithoutOutputIsASuccess) {
    setReturnCode(7);
    host.failMethod(kLunClass, L"SetEnabled", S_OK);
    expectOutcome(DSM_SUCCESS, {});
}

TEST_F(PathWithoutInputsTest, FailedExecutionIsLogged) {
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failMethod(kLunClass, L"SetEnabled", resultOf(code));
        expectOutcome(DSM_ERROR, failureOf("CallMethodforITL::ExecMethod", code));
    }
}

TEST_F(PathWithoutInputsTest, FailedObjectText) {
    setReturnCode(7);
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.fail(L"IWbemClassObject", L"GetObjectText", resultOf(code));
        expectOutcome(DSM_ERROR, failureOf("CallMethodforITL::GetObjectText", code));
    }
}

TEST_F(PathWithoutInputsTest, FailedReturnCode) {
    setReturnCode(7);
    for (const unsigned long code : kFailures) {
        host->clearFaults();
        host.failGet(L"", L"ReturnCode", resultOf(code));
        expectOutcome(DSM_WMI_FAILURE, failureOf("CallMethodforITL::Get(ReturnCode)", code));
    }
}

TEST_F(PathWithoutInputsTest, OutputWithoutReturnCode) {
    EXPECT_EQ(KORVADSMDisablePath(1), DSM_WMI_FAILURE);
    EXPECT_THAT(log.take(),
                ElementsAre(LogLine{"CallMethodforITL::Get(ReturnCode)", kNotFoundCode}));
}

TEST_F(PathWithoutInputsTest, UnreadableNameFailsForWantOfAnObjectPath) {
    host.failGet(kLunClass, L"InstanceName", resultOf(0x80004005));
    EXPECT_EQ(KORVADSMEnablePath(1), DSM_WMI_FAILURE);
    const LogLines lines = log.take();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], (LogLine{"CallMethodforITL::Get", 0x80004005}));
    EXPECT_EQ(lines[1].place, "CallMethodforITL::ExecMethod");
}

TEST_F(PathWithoutInputsTest, GuardAppliesAlike) {
    host->removeInstances(kWmi, kLunClass);
    host.add(MofObject(kLunClass)
                 .text(L"InstanceName", L"LUN\\1")
                 .number(L"KorvaDSMLoadBalancePolicy", 5)
                 .number(L"NumberOfPaths", 1)
                 .objects(L"Paths", {MofObject(kPathClass).number(L"DsmId", 1)}));
    EXPECT_EQ(KORVADSMMakeActivePath(1), DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE);
    expectOutcome(DSM_SUCCESS, {});
}

}  // namespace
}  // namespace quista::test

// policy, reservation, timers, parameters and repair, on a host that the test has started itself.
#include <windows.h>

#include <wbemcli.h>

#include <algorithm>
#include <gmock/gmock.h>

#include "tests/cli/tool_test.h"
#include "tests/support/local_machine.h"
#include "tests/support/simulated_host.h"

namespace quista::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto kWmiFailed = static_cast<HRESULT>(WBEM_E_FAILED);
constexpr const wchar_t* kServiceParameters =
    L"SYSTEM\\CurrentControlSet\\Services\\korvadsm\\Parameters";
constexpr const wchar_t* kBrandKey = L"SOFTWARE\\Velmora\\MPIO";

class SteeringTest : public ToolTest {
  protected:
    SteeringTest() { host.load(L"standard"); }

    SimulatedHost host;
    LocalMachine machine;
};

using PolicyTest = SteeringTest;
using ReservationTest = SteeringTest;
using SettingsTest = SteeringTest;
using RepairTest = SteeringTest;

json find(const json& rows, const char* key, const json& value) {
    for (const json& row : rows) {
        if (row[key] == value) return row;
    }
    ADD_FAILURE() << "no " << key << " " << value;
    return {};
}

// ---- policy

TEST_F(PolicyTest, ShowListsCurrentAndSupportedPolicies) {
    const ToolRun run = runTool({"policy", "show", "kvA7r2Qm9T02", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    const json policies = run.json()["policies"];
    ASSERT_EQ(policies.size(), 6u);
    EXPECT_EQ(find(policies, "policy", 4),
              json::parse(R"({"serialNumber": "kvA7r2Qm9T02", "policy": 4,
                  "policyName": "Least Queue Depth", "current": true, "supported": true})"));
    EXPECT_EQ(find(policies, "policy", 2)["current"], false);
}

TEST_F(PolicyTest, CurrentPolicyIsShownAlsoWithoutTheSupportedOnes) {
    host.failGet(L"DSM_QuerySupportedLBPolicies", L"Supported_LB_Policies", kWmiFailed);
    const ToolRun run = runTool({"policy", "show", "kvA7r2Qm9T02", "--json"});
    EXPECT_EQ(run.exitCode, 1);
    ASSERT_EQ(run.json()["policies"].size(), 1u);
    EXPECT_EQ(run.json()["policies"][0]["supported"], false);
    EXPECT_THAT(run.err, HasSubstr("cannot read all policies"));
    EXPECT_THAT(run.err, HasSubstr("failed step in MPIOlog.dat: "));
}

TEST_F(PolicyTest, UnknownSerialIsNotFound) {
    EXPECT_EQ(runTool({"policy", "show", "nothing"}).exitCode, 3);
    EXPECT_EQ(runTool({"policy", "set", "nothing", "2"}).exitCode, 3);
}

TEST_F(PolicyTest, SetIsReadBack) {
    const ToolRun run = runTool({"policy", "set", "kvA7r2Qm9T02", "Round Robin", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.json()["luns"][0]["policy"], 2);
    EXPECT_EQ(run.json()["change"]["what"],
              "change the policy of the LUN kvA7r2Qm9T02 from Least Queue Depth to Round Robin");
    const json policies = runTool({"policy", "show", "kvA7r2Qm9T02", "--json"}).json()["policies"];
    EXPECT_EQ(find(policies, "policy", 2)["current"], true);
}

TEST_F(PolicyTest, DryRunChangesNothing) {
    const ToolRun run = runTool({"policy", "set", "kvA7r2Qm9T02", "2", "--dry-run", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.json()["luns"][0]["policy"], 4);
    EXPECT_EQ(run.json()["change"]["made"], false);
}

TEST_F(PolicyTest, SuccessWithoutEffectIsAFailure) {
    host.failMethod(L"DSM_LB_Operations", L"DSMSetLoadBalancePolicy", kWmiFailed);
    const ToolRun run = runTool({"policy", "set", "kvA7r2Qm9T02", "2"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("reports success, but the policy is Least Queue Depth (4)"));
}

TEST_F(PolicyTest, FailedChangeNamesTheStepOfTheLog) {
    host.failEnumeration(L"DSM_QueryLBPolicy", kWmiFailed);
    const ToolRun run = runTool({"policy", "set", "kvA7r2Qm9T02", "2"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("failed step in MPIOlog.dat: KORVADsmCallSetDiskPolicyMethod:"
                                   "IWbemServices::CreateInstanceEnum (WBEM_E_FAILED, "));
}

TEST_F(PolicyTest, DefaultIsShownAndSet) {
    EXPECT_EQ(runTool({"policy", "default", "--json"}).json()["defaultPolicy"]["policy"], 2);
    const ToolRun run = runTool({"policy", "default", "least-blocks", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.json()["defaultPolicy"]["policyName"], "Least Blocks");
    EXPECT_EQ(runTool({"policy", "default"}).out, "DEFAULT POLICY  Least Blocks (6)\n");
}

TEST_F(PolicyTest, DefaultThatCannotBeReadOrSetIsAFailure) {
    host.failEnumeration(L"KORVADSM", kWmiFailed);
    EXPECT_THAT(runTool({"policy", "default"}).err, HasSubstr("cannot read the default policy"));
    EXPECT_THAT(runTool({"policy", "default", "6"}).err,
                HasSubstr("cannot set the default policy to Least Blocks"));
}

// A LUN without an instance of DSM_LB_Operations lets the library search for ever.
TEST_F(PolicyTest, CallThatNeverReturnsIsGivenUp) {
    host->removeInstances(kWmi, L"DSM_LB_Operations");
    const std::wstring mof = host->dump();
    writeFile(userFolder.path(L"hang.mof"), std::string(mof.begin(), mof.end()));
    const ToolRun run =
        runProgramFile(L"policy set kvA7r2Qm9T02 2 --simulate hang.mof --timeout 3 --json");
    EXPECT_EQ(run.exitCode, 5);
    EXPECT_THAT(run.json()["messages"][0]["text"].get<std::string>(),
                HasSubstr("KORVADSMSetDiskPolicy has not returned after 3 seconds"));
}

// ---- reservation

TEST_F(ReservationTest, KeyIsSetInBothPlacesAndReadBack) {
    machine.makeKey(kServiceParameters);
    const ToolRun run = runTool({"reservation", "set", "0123456789ABCDEF", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const json keys = run.json()["keys"];
    ASSERT_EQ(keys.size(), 8u);
    EXPECT_EQ(find(keys, "place", "registry")["key"], "0123456789abcdef");
    EXPECT_EQ(find(keys, "serialNumber", "kvA7r2Qm9T02")["key"], "0123456789abcdef");
    EXPECT_EQ(machine.value(kServiceParameters, L"PersistentReservationKey", REG_BINARY),
              "\x01\x23\x45\x67\x89\xab\xcd\xef");
}

TEST_F(ReservationTest, EitherPlaceAlone) {
    machine.makeKey(kServiceParameters);
    runTool({"reservation", "set", "0123456789abcdef", "--registry"});
    json keys = runTool({"reservation", "show", "--json"}).json()["keys"];
    EXPECT_EQ(keys[0]["key"], "0123456789abcdef");
    EXPECT_EQ(keys[1]["key"], "4b56000000005a01");
    runTool({"reservation", "set", "fedcba9876543210", "--driver"});
    keys = runTool({"reservation", "show", "--json"}).json()["keys"];
    EXPECT_EQ(keys[0]["key"], "0123456789abcdef");
    EXPECT_EQ(keys[1]["key"], "fedcba9876543210");
}

TEST_F(ReservationTest, MissingServiceIsToldAndTheDriverLeftAlone) {
    const ToolRun run = runTool({"reservation", "set", "0123456789abcdef"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot set the reservation key 0123456789abcdef in the "
                                   "registry and the driver"));
    EXPECT_THAT(run.err, HasSubstr("(DSM_SET_DEFAULT_LBP_FAILED, 37)"));
    EXPECT_EQ(runTool({"reservation", "show", "--json"}).json()["keys"][1]["key"],
              "4b56000000005a01");
}

TEST_F(ReservationTest, ShowOfOneLun) {
    const ToolRun run = runTool({"reservation", "show", "kvA7r2Qm9T02"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out,
              "PLACE     SERIAL        KEY\n"
              "registry  -             -\n"
              "LUN       kvA7r2Qm9T02  4b56000000005a01\n");
    EXPECT_EQ(run.err, "quistactl: the registry holds no reservation key\n");
    EXPECT_EQ(runTool({"reservation", "show", "nothing"}).exitCode, 3);
}

TEST_F(ReservationTest, DryRunChangesNothing) {
    machine.makeKey(kServiceParameters);
    EXPECT_EQ(runTool({"reservation", "set", "0123456789abcdef", "--dry-run"}).exitCode, 0);
    EXPECT_EQ(machine.value(kServiceParameters, L"PersistentReservationKey", REG_BINARY),
              std::nullopt);
}

// ---- timers and parameters

TEST_F(SettingsTest, TimersAreShown) {
    const json timers = runTool({"timers", "show", "--json"}).json()["timers"];
    ASSERT_EQ(timers.size(), 5u);
    EXPECT_EQ(find(timers, "name", "PathVerificationPeriod")["value"], 30);
    EXPECT_EQ(find(timers, "name", "PathVerificationPeriod")["unit"], "s");
    EXPECT_EQ(find(timers, "name", "RetryCount")["unit"], nullptr);
}

TEST_F(SettingsTest, EveryTimerIsSetAlone) {
    const json before = runTool({"timers", "show", "--json"}).json()["timers"];
    for (const json& timer : before) {
        const std::string name = timer["name"];
        const int value = name == "PathVerifyEnabled" ? 1 : 77;
        const ToolRun run = runTool({"timers", "set", name, std::to_string(value), "--json"});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        json expected = before;
        for (json& each : expected) {
            if (each["name"] == name) each["value"] = value;
        }
        EXPECT_EQ(run.json()["timers"], expected);
        runTool({"timers", "set", name, std::to_string(timer["value"].get<int>())});
    }
}

TEST_F(SettingsTest, EveryParameterIsSetAlone) {
    const json before = runTool({"parameters", "show", "--json"}).json()["parameters"];
    ASSERT_EQ(before.size(), 4u);
    for (const json& parameter : before) {
        const std::string name = parameter["name"];
        const ToolRun run = runTool({"parameters", "set", name, "3", "--json"});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        json expected = before;
        for (json& each : expected) {
            if (each["name"] == name) each["value"] = 3;
        }
        EXPECT_EQ(run.json()["parameters"], expected);
        runTool({"parameters", "set", name, std::to_string(parameter["value"].get<int>())});
    }
}

TEST_F(SettingsTest, CaseOfANameDoesNotCount) {
    EXPECT_EQ(runTool({"timers", "set", "retrycount", "5"}).exitCode, 0);
}

TEST_F(SettingsTest, FlagTakesOneOrZero) {
    const ToolRun run = runTool({"timers", "set", "PathVerifyEnabled", "2"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("PathVerifyEnabled: expected 0 to 1, got '2'"));
}

TEST_F(SettingsTest, DryRunChangesNothing) {
    const ToolRun run = runTool({"timers", "set", "RetryCount", "9", "--dry-run", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.err, HasSubstr("would change RetryCount from 3 to 9\n"));
    EXPECT_EQ(find(run.json()["timers"], "name", "RetryCount")["value"], 3);
}

TEST_F(SettingsTest, FailedChangeNamesTheStepOfTheLog) {
    host.fail(L"IWbemServices", L"PutInstance", kWmiFailed);
    const ToolRun run = runTool({"timers", "set", "RetryCount", "9"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot change RetryCount from 3 to 9"));
    EXPECT_THAT(run.err, HasSubstr("failed step in MPIOlog.dat: "
                                   "SetMpioTimersCounters:PutInstance() failed: %s"));
}

TEST_F(SettingsTest, UnreadableSettingIsAFailure) {
    host.failGet(L"MPIO_TIMERS_COUNTERS", L"RetryCount", kWmiFailed);
    const ToolRun run = runTool({"timers", "show"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("GetMpioTimersCounters::Get(RetryCount)"));
}

TEST_F(SettingsTest, ParameterWithoutEffectIsAFailure) {
    host.failMethod(L"MPIO_WMI_METHODS", L"SetDsmCounters", S_OK);
    const ToolRun run = runTool({"parameters", "set", "RetryCount", "9"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("reports success, but it is 6"));
}

// ---- repair

class RepairedHost : public RepairTest {
  protected:
    RepairedHost() {
        machine.setText(kBrandKey, L"InstallDir", productFolder() + L"\\hosts\\classes\\");
    }
};

using RepairWithFilesTest = RepairedHost;

TEST_F(RepairWithFilesTest, MissingClassesExistAfterwards) {
    host->removeClass(kWmi, L"KORVADSM_LUNINFO");
    const ToolRun run = runTool({"repair", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(find(run.json()["classes"], "classes", "DSM")["present"], true);
    EXPECT_EQ(runTool({"luns", "--json"}).json()["luns"].size(), 7u);
}

TEST_F(RepairWithFilesTest, MpioClassesOnRequest) {
    host->clearTrace();
    EXPECT_EQ(runTool({"repair", "--mpio"}).exitCode, 0);
    const auto trace = host->trace();
    EXPECT_EQ(std::count_if(trace.begin(), trace.end(),
                            [](const auto& call) { return call.method == L"CompileFile"; }),
              4);
}

TEST_F(RepairTest, MissingInstallationIsAFailure) {
    const ToolRun run = runTool({"repair"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("Could not find InstallDir! (DSM_WMI_REPAIR_FAIL, "));
    EXPECT_THAT(run.err, HasSubstr("InstallDir"));
}

TEST_F(RepairTest, DryRunTellsWhichClassesAreMissing) {
    host->removeClass(kWmi, L"KORVADSM_LUNINFO");
    const ToolRun run = runTool({"repair", "--dry-run"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "CLASSES  PRESENT\nDSM      no\nMPIO     yes\n");
}

}  // namespace
}  // namespace quista::test

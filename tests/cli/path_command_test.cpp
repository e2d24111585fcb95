// path activate, passivate, enable, disable, refresh and weight.
#include <windows.h>

#include <wbemcli.h>

#include <algorithm>
#include <gmock/gmock.h>

#include "cli/run.h"
#include "tests/cli/text_output.h"
#include "tests/cli/tool_test.h"
#include "tests/support/simulated_host.h"

namespace quista::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr auto kWmiFailed = static_cast<HRESULT>(WBEM_E_FAILED);

class PathCommandTest : public ToolTest {
  protected:
    /// The paths for which the method was called, as object paths of their LUNs.
    std::size_t callsOf(const std::wstring& method) const {
        const auto trace = host->trace();
        return static_cast<std::size_t>(
            std::count_if(trace.begin(), trace.end(), [&](const simulator::CallRecord& call) {
                return call.method == L"ExecMethod" && call.detail == method;
            }));
    }

    SimulatedHost host;
};

TEST_F(PathCommandTest, EveryActionCallsItsMethod) {
    const struct {
        std::vector<std::string> arguments;
        const wchar_t* method;
    } actions[] = {
        {{"path", "activate", "0x101"}, L"SetActive"},
        {{"path", "passivate", "0x101"}, L"SetPassive"},
        {{"path", "enable", "0x101"}, L"SetEnabled"},
        {{"path", "disable", "0x101"}, L"SetDisabled"},
        {{"path", "refresh", "0x101"}, L"UpdateRTPG"},
        {{"path", "weight", "0x401", "0"}, L"SetWeight"},
    };
    host.load(L"standard");
    for (const auto& action : actions) {
        runTool(action.arguments);
        EXPECT_EQ(callsOf(action.method), 1u) << action.arguments[1];
    }
}

TEST_F(PathCommandTest, EveryFormOfAnIdentifierFindsThePath) {
    host.load(L"standard");
    for (const char* id : {"0x80000203", "2147484163", "-2147483133"}) {
        const ToolRun run = runTool({"path", "enable", id, "--json"});
        EXPECT_EQ(run.exitCode, 0) << id << run.err;
        EXPECT_EQ(run.json()["change"]["what"],
                  "enable the path 0x80000203 of the LUN kvA7r2Qm9T02");
        EXPECT_EQ(run.json()["change"]["made"], true);
    }
    EXPECT_EQ(callsOf(L"SetEnabled"), 3u);
}

TEST_F(PathCommandTest, StateAfterTheChangeIsPrinted) {
    host.load(L"standard");
    const ToolRun run = runTool({"path", "enable", "0x502"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("kvB3h8Ls4E01  0x00000501  active (1)"));
    EXPECT_THAT(run.out, HasSubstr("kvB3h8Ls4E01  0x00000502  active (1)"));
    EXPECT_THAT(run.out, HasSubstr("1 LUN, 2 of 2 paths available: all ok\n"));
}

TEST_F(PathCommandTest, UnknownPathIsNotFound) {
    host.load(L"standard");
    const ToolRun run = runTool({"path", "disable", "0x999", "--json"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.json()["status"]["code"], 12);
    EXPECT_THAT(run.err, HasSubstr("no path 0x00000999: "));
    EXPECT_FALSE(run.json().contains("change"));
}

TEST_F(PathCommandTest, LastAvailablePathIsRefused) {
    host.load(L"degraded");
    for (const char* action : {"disable", "passivate"}) {
        const ToolRun run = runTool({"path", action, "0x301", "--json"});
        EXPECT_EQ(run.exitCode, 4) << run.err;
        EXPECT_EQ(run.json()["status"]["name"], "DSM_LAST_ACTIVE_PATH");
        EXPECT_THAT(run.err, HasSubstr("will not " + std::string(action) +
                                       " the path 0x00000301 of the LUN kvG5d1Wz6R01: "));
        EXPECT_THAT(run.err, HasSubstr("--force"));
    }
    EXPECT_EQ(callsOf(L"SetDisabled") + callsOf(L"SetPassive"), 0u);
}

TEST_F(PathCommandTest, ForceDisablesTheLastPath) {
    host.load(L"degraded");
    runTool({"path", "disable", "0x301", "--force"});
    EXPECT_EQ(callsOf(L"SetDisabled"), 1u);
}

TEST_F(PathCommandTest, DoubtAboutTheLastPathIsARefusal) {
    host.load(L"standard");
    host.failEnumeration(L"KORVADSM_LUNINFO", kWmiFailed);
    const ToolRun run = runTool({"path", "disable", "0x101"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot tell whether it is the last path"));
    EXPECT_EQ(callsOf(L"SetDisabled"), 0u);
}

TEST_F(PathCommandTest, DryRunChangesNothing) {
    host.load(L"standard");
    const ToolRun run = runTool({"path", "disable", "0x101", "--dry-run", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.json()["change"]["made"], false);
    EXPECT_EQ(run.err, "quistactl: would disable the path 0x00000101 of the LUN kvA7r2Qm9T01\n");
    EXPECT_EQ(callsOf(L"SetDisabled"), 0u);
}

TEST_F(PathCommandTest, FailedChangeNamesTheStepOfTheLog) {
    host.load(L"standard");
    host.failGetObject(L"KORVADSM_LUNINFO", kWmiFailed);
    const ToolRun run = runTool({"path", "enable", "0x101", "--json"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot enable the path 0x00000101 of the LUN kvA7r2Qm9T01"));
    EXPECT_THAT(run.err, HasSubstr("failed step in MPIOlog.dat: CallMethodforITL::GetObject "
                                   "(WBEM_E_FAILED, 0x80041001)\n"));
    const json message = run.json()["messages"].back();
    EXPECT_EQ(message["failedStep"]["place"], "CallMethodforITL::GetObject");
    EXPECT_EQ(message["failedStep"]["code"], 0x80041001u);
    EXPECT_FALSE(message["hint"].get<std::string>().empty());
}

TEST_F(PathCommandTest, WeightedPathsDoNotBecomeActive) {
    host.load(L"standard");
    const ToolRun run = runTool({"path", "activate", "0x402"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("(DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE, 50)"));
}

// In the test's process a user can sit at a console.
class ConfirmationTest : public PathCommandTest {
  protected:
    ToolRun run(std::vector<std::string> arguments, std::optional<bool> answer) {
        TextOutput out;
        TextOutput err;
        cli::Process process{productFolder(), [](int) {},
                             [&](const std::string& question) {
                                 asked = question;
                                 return answer;
                             }};
        ToolRun run;
        run.exitCode = cli::run(arguments, {out, err}, process);
        run.err = err.text;
        return run;
    }

    std::string asked;
};

TEST_F(ConfirmationTest, NoIsARefusal) {
    host.load(L"standard");
    const ToolRun refused = run({"path", "disable", "0x101"}, false);
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_EQ(asked, "quistactl will disable the path 0x00000101 of the LUN kvA7r2Qm9T01. Go on?");
    EXPECT_EQ(refused.err, "quistactl: error: not confirmed; nothing was changed\n");
    EXPECT_EQ(callsOf(L"SetDisabled"), 0u);
}

TEST_F(ConfirmationTest, YesAndNobodyToAskGoOn) {
    host.load(L"standard");
    run({"path", "disable", "0x101"}, true);
    EXPECT_EQ(callsOf(L"SetDisabled"), 1u);
    run({"path", "disable", "0x201"}, std::nullopt);
    EXPECT_EQ(callsOf(L"SetDisabled"), 2u);
}

TEST_F(ConfirmationTest, NobodyIsAskedWithoutNeed) {
    host.load(L"standard");
    run({"path", "disable", "0x101", "--yes"}, false);
    EXPECT_EQ(callsOf(L"SetDisabled"), 1u);
    run({"path", "disable", "0x101", "--dry-run"}, false);
    run({"path", "enable", "0x101"}, false);
    EXPECT_EQ(callsOf(L"SetEnabled"), 1u);
    EXPECT_EQ(asked, "");
}

// A method that answers without an out object counts as success, whatever became of the path.
TEST_F(PathCommandTest, SuccessWithoutEffectIsAFailure) {
    host.load(L"standard");
    host.failMethod(L"KORVADSM_LUNINFO", L"SetDisabled", S_OK);
    const ToolRun run = runTool({"path", "disable", "0x101"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("reports success, but the path is active\n"));
    EXPECT_THAT(run.out, HasSubstr("0x00000101  active (1)"));
}

TEST_F(PathCommandTest, RefreshDoesNotReachIdentifiersWithTheHighestBit) {
    host.load(L"standard");
    const ToolRun run = runTool({"path", "refresh", "0x80000203"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("(DSM_PATH_NOT_FOUND, 12)"));
    EXPECT_THAT(run.err, HasSubstr("name another path of the same LUN"));
}

}  // namespace
}  // namespace quista::test

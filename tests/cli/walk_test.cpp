// A host of one's own: changes last from run to run.
#include <windows.h>

#include <functional>
#include <gmock/gmock.h>

#include "tests/cli/tool_test.h"
#include "tests/support/simulated_host.h"

namespace quista::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

// Runs against the host in the file host.mof.
class OwnHostTest : public ToolTest {
  protected:
    static ToolRun onHost(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--simulate", "host.mof"});
        return runTool(arguments);
    }
    static json jsonOnHost(std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        return onHost(arguments).json();
    }
    void rewriteHost(const std::function<void(SimulatedHost&)>& change) const {
        SimulatedHost host;
        host.load(userFolder.path(L"host.mof"));
        change(host);
        const std::wstring mof = host->dump();
        writeFile(userFolder.path(L"host.mof"), std::string(mof.begin(), mof.end()));
    }
};

TEST_F(OwnHostTest, Walk) {
    ASSERT_EQ(runTool({"simulate", "new", "host.mof"}).exitCode, 0);

    EXPECT_EQ(onHost({"path", "disable", "0x501"}).exitCode, 0);
    EXPECT_THAT(onHost({"luns"}).out, HasSubstr("1 on the last path (kvB3h8Ls4E01)"));
    EXPECT_THAT(onHost({"status"}).out, HasSubstr("1 on the last path (kvB3h8Ls4E01)"));
    const ToolRun last = onHost({"path", "disable", "0x502"});
    EXPECT_EQ(last.exitCode, 4);
    EXPECT_THAT(last.err, HasSubstr("(DSM_LAST_ACTIVE_PATH, 40)"));
    EXPECT_EQ(onHost({"path", "enable", "0x501"}).exitCode, 0);
    EXPECT_THAT(onHost({"luns"}).out, HasSubstr("all ok"));

    EXPECT_EQ(onHost({"policy", "set", "kvA7r2Qm9T02", "round-robin"}).exitCode, 0);
    EXPECT_EQ(jsonOnHost({"lun", "kvA7r2Qm9T02"})["luns"][0]["policy"], 2);

    EXPECT_EQ(onHost({"reservation", "set", "0123456789abcdef"}).exitCode, 0);
    const json keys = jsonOnHost({"reservation", "show", "kvA7r2Qm9T02"})["keys"];
    EXPECT_EQ(keys[0]["place"], "registry");
    EXPECT_EQ(keys[0]["key"], "0123456789abcdef");
    EXPECT_EQ(keys[1]["key"], "0123456789abcdef");

    rewriteHost([](SimulatedHost& host) { host->removeClass(kWmi, L"KORVADSM_LUNINFO"); });
    EXPECT_EQ(onHost({"repair"}).exitCode, 0);
    EXPECT_EQ(jsonOnHost({"luns"})["luns"].size(), 7u);
    rewriteHost([](SimulatedHost& host) {
        EXPECT_TRUE(host->removeClass(kWmi, L"KORVADSM_LUNINFO")) << "the repair has lasted";
    });
}

TEST_F(OwnHostTest, MachinesRegistryIsLeftAlone) {
    runTool({"simulate", "new", "host.mof"});
    EXPECT_EQ(onHost({"reservation", "set", "0123456789abcdef"}).exitCode, 0);
    HKEY key = nullptr;
    EXPECT_NE(RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                            L"SYSTEM\\CurrentControlSet\\Services\\korvadsm\\Parameters", 0,
                            KEY_READ, &key),
              ERROR_SUCCESS);
}

TEST_F(OwnHostTest, SampleIsNotChangedAndTheToolSaysSo) {
    const ToolRun run = runTool({"path", "disable", "0x101", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.err, HasSubstr("changes to the sample are not kept"));
    EXPECT_THAT(run.err, HasSubstr("simulate new"));
    EXPECT_THAT(runTool({"luns", "--simulate", "standard"}).out, HasSubstr("all ok"));
}

TEST_F(OwnHostTest, FileThatExistsIsNotOverwrittenUnlessForced) {
    writeFile(userFolder.path(L"host.mof"), "mine");
    const ToolRun refused = runTool({"simulate", "new", "host.mof"});
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_THAT(refused.err, HasSubstr("host.mof exists; nothing was changed"));
    EXPECT_EQ(readFile(userFolder.path(L"host.mof")), "mine");
    EXPECT_EQ(runTool({"simulate", "new", "host.mof", "--force"}).exitCode, 0);
    EXPECT_THAT(onHost({"luns"}).out, HasSubstr("7 LUNs"));
}

TEST_F(OwnHostTest, AnySampleOrFileIsABeginning) {
    const json made =
        runTool({"simulate", "new", "host.mof", "--from", "degraded", "--json"}).json();
    EXPECT_EQ(made["host"], json({{"file", "host.mof"}, {"from", "degraded"}}));
    runTool({"simulate", "new", "copy.mof", "--from", "host.mof"});
    EXPECT_EQ(readFile(userFolder.path(L"copy.mof")), readFile(userFolder.path(L"host.mof")));
    EXPECT_EQ(runTool({"simulate", "new", "x.mof", "--from", "nothing"}).exitCode, 2);
    EXPECT_FALSE(fileExists(userFolder.path(L"x.mof")));
}

TEST_F(OwnHostTest, ClassesThatWereLeftOutAreRepaired) {
    runTool({"simulate", "new", "host.mof", "--without", "korvadsm"});
    runTool({"simulate", "new", "whole.mof"});
    EXPECT_NE(readFile(userFolder.path(L"host.mof")), readFile(userFolder.path(L"whole.mof")));
    const ToolRun repair = onHost({"repair"});
    EXPECT_EQ(repair.exitCode, 0);
    EXPECT_THAT(repair.out, HasSubstr("DSM      yes\n"));
    EXPECT_THAT(onHost({"luns"}).out, HasSubstr("7 LUNs, 21 of 21 paths available: all ok"));
}

TEST_F(OwnHostTest, OnlyClassFilesCanBeLeftOut) {
    const ToolRun run = runTool({"simulate", "new", "host.mof", "--without", "nothing"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("expected korvadsm, pdo, lbpolicy or mpio"));
    EXPECT_FALSE(fileExists(userFolder.path(L"host.mof")));
}

TEST_F(OwnHostTest, FailedAndRefusedCommandsLeaveTheFileAsItIs) {
    runTool({"simulate", "new", "host.mof", "--from", "degraded"});
    const auto before = readFile(userFolder.path(L"host.mof"));
    onHost({"luns"});
    onHost({"path", "disable", "0x301"});
    onHost({"path", "disable", "0x101", "--dry-run"});
    onHost({"path", "activate", "0x302"});
    onHost({"timers", "set", "RetryCount"});
    EXPECT_EQ(readFile(userFolder.path(L"host.mof")), before);
}

TEST_F(OwnHostTest, FolderThatDoesNotExistIsTold) {
    const ToolRun run = runTool({"simulate", "new", "missing\\host.mof"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot write the simulated host missing\\host.mof: "));
}

TEST_F(OwnHostTest, NameOfASampleIsNoFile) {
    const ToolRun run = runTool({"simulate", "new", "host"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("such as host.mof"));
}

TEST_F(OwnHostTest, FileThatCannotBeReplacedStaysWhole) {
    runTool({"simulate", "new", "host.mof"});
    const auto before = readFile(userFolder.path(L"host.mof"));
    const HANDLE reader = CreateFileW(userFolder.path(L"host.mof").c_str(), GENERIC_READ,
                                      FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    const ToolRun run = onHost({"path", "disable", "0x101"});
    CloseHandle(reader);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot write the simulated host host.mof: "));
    EXPECT_EQ(readFile(userFolder.path(L"host.mof")), before);
}

}  // namespace
}  // namespace quista::test

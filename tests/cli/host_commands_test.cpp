// The commands that show MPIO and Windows: status and disks.
#include <windows.h>

#include <wbemcli.h>

#include <gmock/gmock.h>

#include "tests/cli/tool_test.h"
#include "tests/support/simulated_host.h"

namespace quista::test {
namespace {

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr auto kWmiFailed = static_cast<HRESULT>(WBEM_E_FAILED);

using StatusTest = ToolTest;
using DisksTest = ToolTest;

// ---- status

TEST_F(StatusTest, StandardHostWorks) {
    const ToolRun run = runTool({"status", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("MPIO PRESENT   yes\n"
                                   "DSM INSTALLED  yes\n"
                                   "DSM LOADED     yes\n"
                                   "MPIO DISKS     9\n"));
    EXPECT_THAT(run.out, HasSubstr("CONTROLLER  STATE  DSM\n"
                                   "         1      1  Data KORVA DSM\n"));
    EXPECT_THAT(run.out, ContainsRegex("\nkorvadsm.sys +4.1.2602.0 "));
    EXPECT_THAT(run.out, HasSubstr("7 LUNs, 21 of 21 paths available: all ok\n"));
}

TEST_F(StatusTest, JsonIsExact) {
    const json document = runTool({"status", "--simulate", "standard", "--json"}).json();
    EXPECT_EQ(document["mpio"]["mpioPresent"], true);
    EXPECT_EQ(document["mpio"]["dsmInstalled"], true);
    EXPECT_EQ(document["mpio"]["dsmLoaded"], true);
    EXPECT_EQ(document["controllers"].size(), 4u);
    EXPECT_EQ(document["controllers"][0]["dsm"], "Data KORVA DSM");
    EXPECT_EQ(document["drivers"].size(), 4u);
    EXPECT_EQ(document["drivers"][1]["file"], "korvadsm.sys");
    EXPECT_EQ(document["drivers"][1]["version"], "4.1.2602.0");
    EXPECT_EQ(document["summary"]["luns"], 7);
}

TEST_F(StatusTest, DegradedHostIsToldWhatIsWrong) {
    const ToolRun run = runTool({"status", "--simulate", "degraded"});
    EXPECT_EQ(run.exitCode, 1) << "one serial number is missing";
    EXPECT_THAT(run.out, HasSubstr("1 down (kvB3h8Ls4E02)"));
    EXPECT_THAT(run.err, HasSubstr("the serial number of the LUN"));
}

TEST_F(StatusTest, EmptyHostHasMpioWithoutLuns) {
    const ToolRun run = runTool({"status", "--simulate", "empty", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.json()["mpio"]["mpioPresent"], true);
    EXPECT_EQ(run.json()["summary"]["luns"], 0);
}

TEST_F(StatusTest, BareHostHasNoMpio) {
    const ToolRun run = runTool({"status", "--simulate", "bare"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("MPIO PRESENT   no\n"));
    EXPECT_THAT(run.out, HasSubstr("MPIO DISKS     -\n"));
    EXPECT_THAT(run.err, HasSubstr("MPIO does not answer"));
    EXPECT_THAT(run.err, HasSubstr("Multipath I/O"));
}

TEST_F(StatusTest, FileThatIsMissingHasADash) {
    const EnvironmentVariable windows(L"SYSTEMROOT", userFolder.path());
    const ToolRun run = runTool({"status", "--simulate", "standard", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    for (const json& file : run.json()["drivers"]) {
        if (file["file"] == "quistactl.exe") continue;
        EXPECT_EQ(file["version"], nullptr) << file["file"];
        EXPECT_EQ(file["date"], nullptr);
    }
}

TEST_F(StatusTest, MissingDsmClassesLeaveTheRestOfTheStatus) {
    SimulatedHost host;
    host.load(L"standard");
    host->removeClass(kWmi, L"KORVADSM_LUNINFO");
    const ToolRun run = runTool({"status", "--json"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.json()["mpio"]["dsmLoaded"], true);
    EXPECT_FALSE(run.json().contains("summary"));
    EXPECT_THAT(run.err, HasSubstr("KORVADSM_LUNINFO is missing"));
}

// The controller listing of the library goes to the C runtime's standard output.
TEST_F(StatusTest, ControllerListingDoesNotSpoilTheDocument) {
    const ToolRun run = runProgramFile(L"status --simulate standard --json");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.json()["controllers"].size(), 4u);
    EXPECT_THAT(run.err, Not(HasSubstr("Data KORVA DSM")));
}

// ---- disks

TEST_F(DisksTest, StandardHostIsListed) {
    const ToolRun run = runTool({"disks", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr(R"(SERIAL        DISK  DEVICE                   SIZE  LUN PATH
kvA7r2Qm9T01     1  \\.\PHYSICALDRIVE1  200.0 GiB  /vol/db01/lun0
kvA7r2Qm9T02     2  \\.\PHYSICALDRIVE2    1.0 TiB  /vol/db01/lun1
)"));
}

TEST_F(DisksTest, JsonIsExact) {
    const json disks = runTool({"disks", "--simulate", "standard", "--json"}).json()["disks"];
    ASSERT_EQ(disks.size(), 7u);
    EXPECT_EQ(disks[1], json::parse(R"({"serialNumber": "kvA7r2Qm9T02", "diskNumber": 2,
                              "device": "\\\\.\\PHYSICALDRIVE2", "size": 1099511627776,
                              "lunPath": "/vol/db01/lun1", "deviceId":
     "MPIO\\DISK&VEN_KORVA&PROD_LUN&REV_0.2\\1&7F6AC24&0&6B7641377232516D39543032"})"));
}

TEST_F(DisksTest, LunWithoutADiskHasADash) {
    SimulatedHost host;
    host.load(L"standard");
    host->removeInstances(kCimv2, L"Win32_PhysicalMedia");
    host->removeInstances(kCimv2, L"Win32_DiskDrive");
    const ToolRun run = runTool({"disks"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("kvA7r2Qm9T01     -  -          -  /vol/db01/lun0\n"));
}

TEST_F(DisksTest, MissingMediaAreMadeUpForByTheDrives) {
    SimulatedHost host;
    host.load(L"standard");
    host->removeInstances(kCimv2, L"Win32_PhysicalMedia");
    EXPECT_EQ(runTool({"disks", "--json"}).json()["disks"][1]["diskNumber"], 2);
}

TEST_F(DisksTest, FailedQueryMakesTheListingIncomplete) {
    SimulatedHost host;
    host.load(L"standard");
    host.failQuery(L"Win32_DiskDrive", kWmiFailed);
    const ToolRun run = runTool({"disks", "--json"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.json()["disks"][1]["diskNumber"], 2);
    EXPECT_EQ(run.json()["disks"][1]["size"], nullptr);
    EXPECT_THAT(run.err, HasSubstr("cannot read the class Win32_DiskDrive completely"));
}

TEST_F(DisksTest, NothingOfWmiIsKept) {
    SimulatedHost host;
    host.load(L"standard");
    const LiveObjectsCheck check(host);
    runTool({"disks"});
    runTool({"status"});
}

TEST_F(DisksTest, EmptyHostHasNone) {
    const ToolRun run = runTool({"disks", "--simulate", "empty"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "quistactl: no LUNs found\n");
}

}  // namespace
}  // namespace quista::test

// The commands that show which adapter of the host carries which path.
#include <windows.h>

#include <wbemcli.h>

#include <filesystem>
#include <gmock/gmock.h>

#include "cli/text.h"
#include "tests/adapters/standin_library.h"
#include "tests/cli/tool_test.h"
#include "tests/support/simulated_host.h"

namespace quista::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr auto kWmiFailed = static_cast<HRESULT>(WBEM_E_FAILED);

using AdaptersTest = ToolTest;
using AdapterOfPathTest = ToolTest;
using TopologyCommandTest = ToolTest;

// ---- adapters

TEST_F(AdaptersTest, StandardHost) {
    const ToolRun run = runTool({"adapters", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, R"(ADAPTER   fc-hba-0
PROTOCOL  FC
PATHS     15/15

ADDRESS                  SCSI PORT  PATHS  LUNS
21:00:00:24:ff:3c:5a:10          2    8/8     5
21:00:00:24:ff:3c:5a:11          3    7/7     5

ADAPTER   MS-iSCSI-Initiator-0000_0
PROTOCOL  iSCSI
PATHS     6/6

ADDRESS            SCSI PORT  PATHS  LUNS
192.168.10.101             4    2/2     2
192.168.20.101             4    1/1     1
fd4b:5600:10::101          4    3/3     2

PORTAL
192.168.10.101
192.168.20.101
fd4b:5600:10::101
)");
}

TEST_F(AdaptersTest, JsonIsExact) {
    const json document = runTool({"adapters", "--simulate", "degraded", "--json"}).json();
    ASSERT_EQ(document["adapters"].size(), 2u);
    const json& fibreChannel = document["adapters"][0];
    EXPECT_EQ(fibreChannel["adapter"], "fc-hba-0");
    EXPECT_EQ(fibreChannel["protocol"], "FC");
    EXPECT_EQ(fibreChannel["pathsAvailable"], 7);
    EXPECT_EQ(fibreChannel["pathsTotal"], 12);
    EXPECT_FALSE(fibreChannel.contains("portals"));
    EXPECT_EQ(fibreChannel["ports"][1],
              json::parse(R"({"address": "21:00:00:24:ff:3c:5a:11", "scsiPort": 3,
                              "pathsAvailable": 3, "pathsTotal": 6, "luns": 3})"));
    EXPECT_EQ(document["adapters"][1]["portals"][2],
              json::parse(R"({"address": "fd4b:5600:10::101", "tcpPort": 0})"));
}

TEST_F(AdaptersTest, AdapterOfOnePath) {
    const ToolRun run = runTool({"adapters", "--path", "0x80000203", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("kvA7r2Qm9T02  0x80000203  active (1)"));
    EXPECT_THAT(run.out, HasSubstr("ADAPTER   fc-hba-0\n"));
    EXPECT_THAT(run.out, HasSubstr("\n21:00:00:24:ff:3c:5a:10          2    8/8     5\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("5a:11"))) << "the other port does not carry it";
    EXPECT_THAT(run.out, Not(HasSubstr("iSCSI")));
}

TEST_F(AdaptersTest, PathIsNamedInEveryForm) {
    const auto adaptersFor = [](const std::string& id) {
        return runTool({"adapters", "--path", id, "--simulate", "standard", "--json"})
            .json()["adapters"];
    };
    EXPECT_EQ(adaptersFor("0x80000203").size(), 1u);
    EXPECT_EQ(adaptersFor("2147484163"), adaptersFor("0x80000203"));
    EXPECT_EQ(adaptersFor("-2147483133"), adaptersFor("0x80000203"));
}

TEST_F(AdaptersTest, UnknownPathIsNotFound) {
    const ToolRun run =
        runTool({"adapters", "--path", "0x999", "--simulate", "standard", "--json"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.json()["status"]["name"], "DSM_PATH_NOT_FOUND");
    EXPECT_THAT(run.json()["adapters"], IsEmpty());
    EXPECT_THAT(run.err, HasSubstr("no path 0x00000999"));
}

TEST_F(AdaptersTest, WrongPathIsAUsageError) {
    const ToolRun run = runTool({"adapters", "--path", "first", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("expected a path identifier of 32 bits"));
}

TEST_F(AdaptersTest, InitiatorWithoutPathsIsListed) {
    const ToolRun run = runTool({"adapters", "--simulate", "empty"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, StartsWith("ADAPTER   MS-iSCSI-Initiator-0000_0\n"
                                    "PROTOCOL  iSCSI\n"
                                    "PATHS     0/0\n"
                                    "\n"
                                    "PORTAL\n"));
}

TEST_F(AdaptersTest, HostThatKnowsOfNoneIsTold) {
    const ToolRun run = runTool({"adapters", "--simulate", "bare"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot list the LUNs"));
}

// ---- lun and paths

TEST_F(AdapterOfPathTest, PathsNameTheirAdapters) {
    const json paths = runTool({"paths", "--simulate", "standard", "--json"}).json()["paths"];
    ASSERT_EQ(paths.size(), 21u);
    EXPECT_EQ(paths[0]["adapter"], "fc-hba-0");
    EXPECT_EQ(paths[0]["adapterAddress"], "21:00:00:24:ff:3c:5a:10");
    EXPECT_EQ(paths[1]["adapterAddress"], "21:00:00:24:ff:3c:5a:11");
    EXPECT_EQ(paths[14]["adapter"], "MS-iSCSI-Initiator-0000_0");
    EXPECT_EQ(paths[14]["adapterAddress"], "192.168.20.101");
}

TEST_F(AdapterOfPathTest, LunNamesTheAdaptersOfItsPaths) {
    const json document =
        runTool({"lun", "kvA7r2Qm9X01", "--simulate", "standard", "--json"}).json();
    const json paths = document["luns"][0]["paths"];
    ASSERT_EQ(paths.size(), 4u);
    EXPECT_EQ(paths[1]["adapter"], "fc-hba-0");
    EXPECT_EQ(paths[3]["adapter"], "MS-iSCSI-Initiator-0000_0");
    EXPECT_EQ(paths[3]["adapterAddress"], "fd4b:5600:10::101");
}

// A change does not wait for the adapters' drivers.
TEST_F(AdapterOfPathTest, SteeringDoesNotLookAdaptersUp) {
    const json paths =
        runTool({"path", "enable", "0x101", "--simulate", "standard", "--json"}).json()["paths"];
    ASSERT_EQ(paths.size(), 4u);
    EXPECT_FALSE(paths[0].contains("adapter"));
}

// ---- topology

TEST_F(TopologyCommandTest, OneLun) {
    const ToolRun run = runTool({"topology", "kvA7r2Qm9X01", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out,
              R"(standard (simulated)
├─ fc-hba-0                   FC     21:00:00:24:ff:3c:5a:10  SCSI port 2  1/1
│  └─ alpha-a:fc0  50:24:b5:61:4a:10:00:00  alpha.storage.example
│     └─ kvA7r2Qm9X01  8.0 TiB  /vol/archive01/lun0  0x00000701  active (1)
├─ fc-hba-0                   FC     21:00:00:24:ff:3c:5a:11  SCSI port 3  1/1
│  └─ alpha-b:fc1  50:24:b5:6a:4a:10:00:00  alpha.storage.example
│     └─ kvA7r2Qm9X01  8.0 TiB  /vol/archive01/lun0  0x00000702  passive (2)
├─ MS-iSCSI-Initiator-0000_0  iSCSI  192.168.10.101           SCSI port 4  1/1
│  └─ alpha-a:ip0  192.168.10.11:3260  alpha.storage.example
│     └─ kvA7r2Qm9X01  8.0 TiB  /vol/archive01/lun0  0x00000703  passive (2)
└─ MS-iSCSI-Initiator-0000_0  iSCSI  fd4b:5600:10::101        SCSI port 4  1/1
   └─ alpha-a:ip1  [fd4b:5600:20::11]:3260  alpha.storage.example
      └─ kvA7r2Qm9X01  8.0 TiB  /vol/archive01/lun0  0x00000704  passive (2)

1 LUN, 4 of 4 paths available: all ok
)");
}

TEST_F(TopologyCommandTest, DegradedHostShowsWhatIsLost) {
    const ToolRun run = runTool({"topology", "--simulate", "degraded"});
    EXPECT_EQ(run.exitCode, 1) << "one serial number is missing from it";
    EXPECT_THAT(run.out, HasSubstr("SCSI port 2  4/6\n"));
    EXPECT_THAT(run.out,
                HasSubstr("kvG5d1Wz6R01  300.0 GiB  /vol/erp01/lun0  0x00000303  failed (3)\n"));
    EXPECT_THAT(run.out, HasSubstr("Invalid Entry  100.0 GiB  /vol/web01/lun2"));
    EXPECT_THAT(run.out, HasSubstr("\n6 LUNs, 11 of 18 paths available: 1 down (kvB3h8Ls4E02);"));
    EXPECT_THAT(run.err, HasSubstr("the serial number of the LUN"));
}

TEST_F(TopologyCommandTest, JsonHasTheSameAsData) {
    const json document = runTool({"topology", "--simulate", "standard", "--json"}).json();
    const json& tree = document["topology"];
    EXPECT_EQ(tree["host"], "standard");
    EXPECT_EQ(tree["simulated"], true);
    ASSERT_EQ(tree["adapterPorts"].size(), 5u);
    const json& port = tree["adapterPorts"][0];
    EXPECT_EQ(port["adapter"], "fc-hba-0");
    EXPECT_EQ(port["protocol"], "FC");
    EXPECT_EQ(port["adapterAddress"], "21:00:00:24:ff:3c:5a:10");
    EXPECT_EQ(port["scsiPort"], 2);
    EXPECT_EQ(port["pathsAvailable"], 8);
    EXPECT_EQ(port["pathsTotal"], 8);
    ASSERT_EQ(port["targets"].size(), 2u);
    const json& target = port["targets"][1];
    EXPECT_EQ(target["targetAdapter"], "alpha-b:fc0");
    EXPECT_EQ(target["target"], "50:24:b5:69:4a:10:00:00");
    EXPECT_EQ(target["storageSystem"], "alpha.storage.example");
    EXPECT_EQ(target["paths"][1],
              json::parse(R"({"serialNumber": "kvA7r2Qm9T02", "size": 1099511627776,
                              "lunPath": "/vol/db01/lun1", "id": "0x80000203", "state": 1,
                              "stateName": "active", "available": true, "primary": false,
                              "proxy": true})"));
    std::size_t paths = 0;
    for (const json& each : tree["adapterPorts"]) paths += each["pathsTotal"].get<std::size_t>();
    EXPECT_EQ(paths, 21u);
}

TEST_F(TopologyCommandTest, NoTerminalIsTooNarrow) {
    for (const std::size_t columns : {12u, 20u, 33u, 40u, 60u, 80u, 120u}) {
        const ToolRun run =
            runTool({"topology", "kvA7r2Qm9X01", "--simulate", "standard"}, {.columns = columns});
        std::string shown;
        for (std::size_t start = 0; start < run.out.size();) {
            const std::size_t end = run.out.find('\n', start);
            const std::string line = run.out.substr(start, end - start);
            EXPECT_LE(cli::displayWidth(line), columns) << run.out;
            for (const char byte : line) {
                if (byte > ' ' && static_cast<unsigned char>(byte) < 0x80) shown += byte;
            }
            start = end + 1;
        }
        for (const char* text : {"21:00:00:24:ff:3c:5a:11", "[fd4b:5600:20::11]:3260",
                                 "/vol/archive01/lun0", "0x00000704", "passive(2)"}) {
            EXPECT_THAT(shown, HasSubstr(text)) << "at " << columns;
        }
    }
}

TEST_F(TopologyCommandTest, UnknownSerialIsNotFound) {
    EXPECT_EQ(runTool({"topology", "nothing", "--simulate", "standard"}).exitCode, 3);
}

TEST_F(TopologyCommandTest, EmptyHostHasNoLuns) {
    const ToolRun run = runTool({"topology", "--simulate", "empty"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "empty (simulated)\n");
    EXPECT_EQ(run.err, "quistactl: no LUNs found\n");
}

// ---- libraries that are missing, fail or know nothing

// A host that the test plays itself; the platform's libraries are those that the test loads.
class AdapterFailureTest : public ToolTest {
  protected:
    SimulatedHost host;
};

constexpr const char* kNoFibreChannel =
    "the adapter of 15 Fibre Channel paths is unknown: hbaapi.dll, the HBA API of Fibre Channel "
    "adapters, cannot be loaded: ";

TEST_F(AdapterFailureTest, MissingLibraryIsTold) {
    host.load(L"standard");
    for (const char* command : {"adapters", "topology"}) {
        const ToolRun run = runTool({command, "--json"});
        EXPECT_EQ(run.exitCode, 1) << command;
        EXPECT_THAT(run.err, HasSubstr(std::string("quistactl: error: ") + kNoFibreChannel));
        EXPECT_THAT(run.err, HasSubstr("(126)\n"));
    }
}

TEST_F(AdapterFailureTest, PathsWithoutLibraryAreStillListed) {
    host.load(L"standard");
    const ToolRun run = runTool({"paths", "--json"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.json()["paths"].size(), 21u);
    EXPECT_EQ(run.json()["paths"][0]["adapter"], nullptr);
    EXPECT_THAT(run.err, HasSubstr(std::string("quistactl: warning: ") + kNoFibreChannel));
}

TEST_F(AdapterFailureTest, UnknownAdaptersHaveAPlaceInTheTree) {
    host.load(L"standard");
    const ToolRun run = runTool({"topology", "kvA7r2Qm9U01"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("\n├─ unknown adapter  FC  -  SCSI port 2  1/1\n"));
    EXPECT_THAT(run.out, HasSubstr("\n└─ unknown adapter  FC  -  SCSI port 3  1/1\n"));
}

TEST_F(AdapterFailureTest, AdapterOfOnePathIsUnknown) {
    host.load(L"standard");
    const ToolRun run = runTool({"adapters", "--path", "0x101"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("error: the adapter of the path 0x00000101 is unknown\n"));
}

TEST_F(AdapterFailureTest, StatusOfTheHbaApiIsTold) {
    const HbaLibrary fibreChannel;
    host.load(L"standard");
    fibreChannel->readHost();
    fibreChannel->prescribe({.function = "HBA_GetAdapterName", .result = 10, .count = 0});
    const ToolRun run = runTool({"topology", "kvA7r2Qm9T01"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("the adapter of 4 Fibre Channel paths is unknown: the HBA API "
                                   "answers with status 10\n"));
    EXPECT_THAT(run.err, HasSubstr("failed step in MPIOlog.dat: QUISTA:GetFCAdapterInfo - could "
                                   "not get adapter name from HBA API"));
}

TEST_F(AdapterFailureTest, HostWithoutAdaptersIsTold) {
    const HbaLibrary fibreChannel;
    host.load(L"standard");
    const ToolRun run = runTool({"topology", "kvA7r2Qm9T01"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("the HBA API knows no adapter, or cannot be used (status 1)\n"));
}

TEST_F(AdapterFailureTest, PathThatNoPortReachesIsTold) {
    const HbaLibrary fibreChannel;
    host.load(L"standard");
    fibreChannel->setAdapters({{"hba", {{"\\\\.\\Scsi2:", {}}, {"\\\\.\\Scsi3:", {}}}, {{0, 0}}}});
    const ToolRun run = runTool({"topology", "kvA7r2Qm9T01"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("the adapter of 2 Fibre Channel paths is unknown: no port of an "
                                   "adapter reaches their targets\n"));
}

TEST_F(AdapterFailureTest, EachTargetIsAskedAboutOnce) {
    const HbaLibrary fibreChannel;
    const IscsiLibrary iscsi;
    host.load(L"standard");
    fibreChannel->readHost();
    iscsi->readHost();
    EXPECT_EQ(runTool({"paths"}).exitCode, 0);
    const std::vector<std::string> calls = fibreChannel->calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "HBA_GetNumberOfAdapters"), 4)
        << "two ports with two targets each, though 15 paths lead to them";
}

TEST_F(AdapterFailureTest, AdapterNameOfAnyLengthIsBounded) {
    const HbaLibrary fibreChannel;
    const std::string name(200, 'n');
    host.load(L"standard");
    fibreChannel->setAdapters({{name, {{"\\\\.\\Scsi2:", {}}}, {{0, 0}, {0, 1}}}});
    const json paths = runTool({"lun", "kvA7r2Qm9T01", "--json"}).json()["luns"][0]["paths"];
    EXPECT_EQ(paths[0]["adapter"], name.substr(0, 128));
    EXPECT_EQ(paths[0]["adapterAddress"], "00:00:00:00:00:00:00:00");
}

TEST_F(AdapterFailureTest, IscsiDiscoveryFailureIsTold) {
    const IscsiLibrary iscsi;
    host.load(L"standard");
    iscsi->readHost();
    iscsi->prescribe({.function = "GetIScsiSessionListW", .result = 5, .count = 0});
    const ToolRun run = runTool({"topology", "kvB3h8Ls4E01"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("the adapter of 2 iSCSI paths is unknown: the iSCSI discovery "
                                   "library fails\n"));
    EXPECT_THAT(run.err, HasSubstr("experienced an error retrieving the sessionList"));
}

TEST_F(AdapterFailureTest, HostWithoutSessionsIsTold) {
    const IscsiLibrary iscsi;
    host.load(L"standard");
    const ToolRun run = runTool({"topology", "kvB3h8Ls4E01"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("there are no active iSCSI target mappings\n"));
}

TEST_F(AdapterFailureTest, MappingOfAnotherTargetIsNoAdapter) {
    const IscsiLibrary iscsi;
    host.load(L"standard");
    iscsi->setMappings({{L"initiator", L"\\\\.\\Scsi4:", 0, 77, {0, 1}}});
    const ToolRun run = runTool({"topology", "kvB3h8Ls4E01"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("no iSCSI session reaches their targets\n"));
}

// An initiator whose session is gone has a name and no address.
TEST_F(AdapterFailureTest, MappingWithoutSessionHasNoAddress) {
    const IscsiLibrary iscsi;
    host.load(L"standard");
    iscsi->setMappings({{L"initiator", L"\\\\.\\Scsi4:", 0, 0, {0, 1}}});
    const json paths = runTool({"paths", "kvB3h8Ls4E01", "--json"}).json()["paths"];
    EXPECT_EQ(paths[0]["adapter"], "initiator");
    EXPECT_EQ(paths[0]["adapterAddress"], nullptr);
}

TEST_F(AdapterFailureTest, UnreadableInitiatorsAreToldWherePathsNeedThem) {
    const HbaLibrary fibreChannel;
    const IscsiLibrary iscsi;
    host.load(L"standard");
    fibreChannel->readHost();
    iscsi->readHost();
    host.failNext(L"MSiSCSI_HBAInformation", kWmiFailed);
    const ToolRun run = runTool({"adapters"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("error: cannot read the iSCSI initiators completely: no text "
                                   "(DSM_ISCSI_QUERY_FAILED, 51)"));
    EXPECT_THAT(run.out, HasSubstr("ADAPTER   fc-hba-0\n"));
}

TEST_F(AdapterFailureTest, MissingStandinsAreTold) {
    for (const wchar_t* file :
         {L"\\quistactl.exe", L"\\quista.dll", L"\\quistasim.dll", L"\\hosts"}) {
        std::filesystem::copy(productFolder() + file, userFolder.path(file + 1),
                              std::filesystem::copy_options::recursive);
    }
    const ToolRun run = runProgramFile(L"topology --simulate standard", userFolder.path());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot load the simulator's stand-in "));
    EXPECT_THAT(run.err, HasSubstr("--simulate needs the folder standins"));
    EXPECT_EQ(runProgramFile(L"luns --simulate standard", userFolder.path()).exitCode, 0)
        << "what needs no adapters works without";
}

// The machine's own WMI and libraries, which here have neither.
TEST_F(AdapterFailureTest, MachineWithoutAnythingIsTold) {
    for (const wchar_t* command : {L"adapters", L"topology"}) {
        const ToolRun run = runProgramFile(command);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, HasSubstr("quistactl: error: cannot list the LUNs"));
    }
}

}  // namespace
}  // namespace quista::test

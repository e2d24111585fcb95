// Every command on every sample host.
#include <gmock/gmock.h>

#include "cli/command.h"
#include "tests/cli/tool_test.h"
#include "tests/support/log_file.h"

namespace quista::test {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using LunsTest = ToolTest;
using LunTest = ToolTest;
using PathsTest = ToolTest;
using ErrorsTest = ToolTest;

json lunOf(const json& document, const std::string& lunPath) {
    for (const json& lun : document["luns"]) {
        if (lun["lunPath"] == lunPath) return lun;
    }
    ADD_FAILURE() << "no LUN " << lunPath;
    return {};
}

// ---- luns

TEST_F(LunsTest, StandardHostIsListed) {
    const ToolRun run = runTool({"luns", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(
        run.out,
        R"(SERIAL             SIZE  POLICY                       PATHS  STATE  STORAGE                LUN PATH
kvA7r2Qm9T01  200.0 GiB  Round Robin with Subset (3)    4/4  ok     alpha.storage.example  /vol/db01/lun0
kvA7r2Qm9T02    1.0 TiB  Least Queue Depth (4)          4/4  ok     alpha.storage.example  /vol/db01/lun1
kvA7r2Qm9U01   64.0 GiB  Failover Only (1)              2/2  ok     alpha.storage.example  /vol/logs01/lun0
kvA7r2Qm9W01  500.0 GiB  Weighted Paths (5)             3/3  ok     alpha.storage.example  /vol/mail01/lun0
kvB3h8Ls4E01  100.0 GiB  Round Robin (2)                2/2  ok     beta.storage.example   /vol/web01/lun0
kvB3h8Ls4E02  100.0 GiB  Least Blocks (6)               2/2  ok     beta.storage.example   /vol/web01/lun1
kvA7r2Qm9X01    8.0 TiB  Failover Only (1)              4/4  ok     alpha.storage.example  /vol/archive01/lun0

7 LUNs, 21 of 21 paths available: all ok
)");
}

TEST_F(LunsTest, DegradedHostShowsAtAGlanceWhatIsWrong) {
    const ToolRun run = runTool({"luns", "--simulate", "degraded"});
    EXPECT_EQ(run.exitCode, 1) << "one serial number is missing from the list";
    EXPECT_EQ(
        run.out,
        R"(SERIAL              SIZE  POLICY                       PATHS  STATE       STORAGE                LUN PATH
kvA7r2Qm9T01   200.0 GiB  Round Robin with Subset (3)    4/4  ok          alpha.storage.example  /vol/db01/lun0
kvB3h8Ls4E01   100.0 GiB  Round Robin (2)                2/2  ok          beta.storage.example   /vol/web01/lun0
kvG5d1Wz6R01   300.0 GiB  Round Robin with Subset (3)    1/4  last path   gamma.storage.example  /vol/erp01/lun0
kvD9k4Jc7N01   500.0 GiB  Failover Only (1)              2/4  degraded    delta.storage.example  /vol/mail01/lun0
kvB3h8Ls4E02   100.0 GiB  Least Blocks (6)               0/2  down        beta.storage.example   /vol/web01/lun1
Invalid Entry  100.0 GiB  Round Robin (2)                2/2  unreadable  beta.storage.example   /vol/web01/lun2

6 LUNs, 11 of 18 paths available: 1 down (kvB3h8Ls4E02); 1 on the last path (kvG5d1Wz6R01); 1 degraded (kvD9k4Jc7N01); 1 unreadable (Invalid Entry)
)");
    EXPECT_EQ(
        run.err,
        R"(quistactl: error: the serial number of the LUN /vol/web01/lun2 on beta.storage.example cannot be read
  The driver does not give it: check the LUN on its storage system. Commands that take a serial number cannot name it.
)");
}

TEST_F(LunsTest, EmptyHostHasNoLuns) {
    const ToolRun run = runTool({"luns", "--simulate", "empty"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "quistactl: no LUNs found\n");
}

TEST_F(LunsTest, BareHostHasNoMpio) {
    const ToolRun run = runTool({"luns", "--simulate", "bare"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("cannot list the LUNs: No data in a class; error in WMI "
                                   "processing (DSM_WMI_PARSING_ERROR, 15)\n"));
    EXPECT_THAT(run.err, HasSubstr("Multipath I/O"));
}

TEST_F(LunsTest, JsonIsExact) {
    const json document = runTool({"luns", "--simulate", "standard", "--json"}).json();
    EXPECT_EQ(document["exitCode"], 0);
    EXPECT_EQ(document["command"], "luns");
    const json lun = lunOf(document, "/vol/db01/lun1");
    EXPECT_EQ(lun["serialNumber"], "kvA7r2Qm9T02");
    EXPECT_EQ(lun["size"], 1099511627776);
    EXPECT_EQ(lun["policy"], 4);
    EXPECT_EQ(lun["policyName"], "Least Queue Depth");
    EXPECT_EQ(lun["pathsAvailable"], 4);
    EXPECT_EQ(lun["pathsTotal"], 4);
    EXPECT_EQ(lun["health"], "ok");
    EXPECT_EQ(lun["storageSystem"], "alpha.storage.example");
    EXPECT_EQ(lun["reservationKey"], "4b56000000005a01");
    EXPECT_EQ(lun["instanceName"],
              "MPIO\\Disk&Ven_KORVA&Prod_LUN&Rev_0.2\\1&7f6ac24&0&6b7641377232516d39543032_0");
}

TEST_F(LunsTest, JsonOfTheDegradedHostCountsWhatIsWrong) {
    const ToolRun run = runTool({"luns", "--simulate", "degraded", "--json"});
    const json document = run.json();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(document["exitCode"], 1);
    EXPECT_EQ(document["status"]["name"], "DSM_WMI_PARSING_ERROR");
    EXPECT_EQ(document["summary"],
              json::parse(R"({"luns": 6, "ok": 2, "degraded": 1, "lastPath": 1, "down": 1,
                              "unreadable": 1, "paths": 18, "pathsAvailable": 11})"));
    EXPECT_EQ(lunOf(document, "/vol/erp01/lun0")["health"], "last path");
    EXPECT_EQ(lunOf(document, "/vol/web01/lun2")["serialNumber"], nullptr);
    EXPECT_THAT(document["messages"][0]["text"].get<std::string>(), HasSubstr("serial number"));
}

TEST_F(LunsTest, NoHeadersLeavesRowsAlone) {
    const ToolRun run = runTool({"luns", "--simulate", "standard", "--no-headers"});
    EXPECT_THAT(run.out, Not(HasSubstr("SERIAL")));
    EXPECT_THAT(run.out, Not(HasSubstr("available")));
    EXPECT_THAT(run.out, HasSubstr("kvA7r2Qm9T02"));
}

TEST_F(LunsTest, UsualTerminalKeepsTheStateInTheFirstLine) {
    const ToolRun run = runTool({"luns", "--simulate", "degraded"}, {.columns = 80});
    EXPECT_THAT(run.out,
                HasSubstr("\nkvG5d1Wz6R01   300.0 GiB  Round Robin with Subset (3)    1/4  last "
                          "path\n    gamma.storage.example  /vol/erp01/lun0\n"));
}

TEST_F(LunsTest, NarrowTerminalLosesNothing) {
    const ToolRun run = runTool({"luns", "--simulate", "standard"}, {.columns = 30});
    EXPECT_THAT(run.out, HasSubstr("LUN PATH  /vol/db01/lun1\n"));
    EXPECT_THAT(run.out, HasSubstr("SERIAL    kvA7r2Qm9T02\n"));
}

TEST_F(LunsTest, ColourOnlyWhereItIsTakenAndWanted) {
    const std::vector<std::string> luns = {"luns", "--simulate", "standard"};
    const auto colored = [&](const char* when, bool takesColor) {
        std::vector<std::string> arguments = luns;
        arguments.insert(arguments.end(), {"--color", when});
        const ToolRun run = runTool(arguments, {.columns = {}, .takesColor = takesColor});
        return run.out.find('\x1b') != std::string::npos;
    };
    EXPECT_TRUE(colored("auto", true));
    EXPECT_FALSE(colored("auto", false));
    EXPECT_TRUE(colored("always", false));
    EXPECT_FALSE(colored("never", true));
}

TEST_F(LunsTest, NoColorIsRespected) {
    _putenv("NO_COLOR=1");
    const ToolRun plain =
        runTool({"luns", "--simulate", "standard"}, {.columns = {}, .takesColor = true});
    _putenv("NO_COLOR=");
    EXPECT_THAT(plain.out, Not(HasSubstr("\x1b")));
}

TEST_F(LunsTest, LogGoesToTheApplicationData) {
    runTool({"luns", "--simulate", "standard"});
    EXPECT_THAT(LogFile(userFolder.path(L"Quista")).lines(),
                Contains(LogLine{"DSM_INITIALIZED", 45}));
}

// ---- lun

TEST_F(LunTest, AllDetailsAndPathsOfOne) {
    const ToolRun run = runTool({"lun", "kvA7r2Qm9T02", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, R"(SERIAL                  kvA7r2Qm9T02
SIZE                    1.0 TiB
POLICY                  Least Queue Depth (4)
PATHS                   4/4
STATE                   ok
STORAGE                 alpha.storage.example
LUN PATH                /vol/db01/lun1
STORAGE VERSION         KORVA Release 9.4.2
STORAGE VERSION NUMBER  9.4.2
LUN STATE               online (0)
CF MODE                 takeover pair (1)
CLUSTER TYPE            two nodes (1)
RESERVATION KEY         4b56000000005a01
INSTANCE NAME           MPIO\Disk&Ven_KORVA&Prod_LUN&Rev_0.2\1&7f6ac24&0&6b7641377232516d39543032_0

ID          STATE       PROTOCOL  ADDRESS  PRIMARY  PROXY  WEIGHT  TARGET                   TARGET NODE              PORTAL GROUP  ALUA          TPG STATE                 PATH ID     TARGET ADAPTER  ADAPTER   ADAPTER ADDRESS
0x00000201  active (1)  FC        2:0:0:1  yes      no          0  50:24:b5:61:4a:10:00:00  50:24:b5:60:4a:10:00:00             -  implicit (1)  active/optimized (0)      0x77020000  alpha-a:fc0     fc-hba-0  21:00:00:24:ff:3c:5a:10
0x00000202  active (1)  FC        3:0:0:1  yes      no          0  50:24:b5:62:4a:10:00:00  50:24:b5:60:4a:10:00:00             -  implicit (1)  active/optimized (0)      0x77030000  alpha-a:fc1     fc-hba-0  21:00:00:24:ff:3c:5a:11
0x80000203  active (1)  FC        2:0:1:1  no       yes         0  50:24:b5:69:4a:10:00:00  50:24:b5:60:4a:10:00:00             -  implicit (1)  active/non-optimized (1)  0x77020001  alpha-b:fc0     fc-hba-0  21:00:00:24:ff:3c:5a:10
0x00000204  active (1)  FC        3:0:1:1  no       yes         0  50:24:b5:6a:4a:10:00:00  50:24:b5:60:4a:10:00:00             -  implicit (1)  active/non-optimized (1)  0x77030001  alpha-b:fc1     fc-hba-0  21:00:00:24:ff:3c:5a:11
)");
}

TEST_F(LunTest, JsonHasThePathsWithinTheLun) {
    const json document =
        runTool({"lun", "kvA7r2Qm9T02", "--simulate", "standard", "--json"}).json();
    ASSERT_EQ(document["luns"].size(), 1u);
    const json paths = document["luns"][0]["paths"];
    ASSERT_EQ(paths.size(), 4u);
    EXPECT_EQ(paths[2]["id"], "0x80000203") << "bit 31 is set";
    EXPECT_EQ(paths[2]["state"], 1);
    EXPECT_EQ(paths[2]["stateName"], "active");
    EXPECT_EQ(paths[2]["available"], true);
    EXPECT_EQ(paths[2]["proxy"], true);
    EXPECT_EQ(paths[2]["target"], "50:24:b5:69:4a:10:00:00");
    EXPECT_EQ(paths[2]["targetNode"], "50:24:b5:60:4a:10:00:00");
    EXPECT_EQ(paths[2]["targetAdapter"], "alpha-b:fc0");
    EXPECT_EQ(paths[2]["targetAddress"], nullptr);
    EXPECT_EQ(paths[2]["pathId"], "0x77020001");
    EXPECT_EQ(paths[2]["scsiAddress"], "2:0:1:1");
}

TEST_F(LunTest, UnknownSerialIsNotFound) {
    const ToolRun run = runTool({"lun", "nothing", "--simulate", "standard", "--json"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.json()["status"]["code"], 27);
    EXPECT_THAT(run.json()["luns"], IsEmpty());
    EXPECT_THAT(run.err, HasSubstr("no LUN nothing: Path to a LUN with matching Serial Number not "
                                   "found (DSM_SERIAL_NOT_FOUND, 27)"));
}

TEST_F(LunTest, SerialInOtherLettersIsNotFoundButPointedOut) {
    const ToolRun run = runTool({"lun", "KVA7R2QM9T02", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.err, HasSubstr("there is a LUN kvA7r2Qm9T02"));
}

TEST_F(LunTest, SerialWithAQuoteIsJustAnotherSerial) {
    EXPECT_EQ(runTool({"lun", "a\"b\\", "--simulate", "standard"}).exitCode, 3);
}

// One unreadable LUN does not make another one's details a failure to find it.
TEST_F(LunTest, SearchOnTheDegradedHostFinds) {
    const ToolRun run = runTool({"lun", "kvG5d1Wz6R01", "--simulate", "degraded"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("last path"));
    EXPECT_THAT(run.out, HasSubstr("failed (3)"));
}

TEST_F(LunTest, UnreadableLunIsFoundByWhatTheListShows) {
    const ToolRun run = runTool({"lun", "Invalid Entry", "--simulate", "degraded"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("/vol/web01/lun2"));
}

TEST_F(LunTest, LunThatIsNotFoundMayBeAnUnreadableOne) {
    const ToolRun run = runTool({"lun", "nothing", "--simulate", "degraded"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.err, HasSubstr("no LUN nothing"));
    EXPECT_THAT(run.err, HasSubstr("the serial number of the LUN /vol/web01/lun2 on "
                                   "beta.storage.example cannot be read"));
}

// ---- paths

TEST_F(PathsTest, AllPathsOfTheStandardHost) {
    const ToolRun run = runTool({"paths", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(
        run.out,
        R"(SERIAL        ID          STATE        PROTOCOL  ADDRESS  PRIMARY  PROXY  WEIGHT  TARGET                   TARGET ADAPTER  ADAPTER
kvA7r2Qm9T01  0x00000101  active (1)   FC        2:0:0:0  yes      no          0  50:24:b5:61:4a:10:00:00  alpha-a:fc0     fc-hba-0
kvA7r2Qm9T01  0x00000102  active (1)   FC        3:0:0:0  yes      no          0  50:24:b5:62:4a:10:00:00  alpha-a:fc1     fc-hba-0
kvA7r2Qm9T01  0x00000103  passive (2)  FC        2:0:1:0  no       yes         0  50:24:b5:69:4a:10:00:00  alpha-b:fc0     fc-hba-0
kvA7r2Qm9T01  0x00000104  passive (2)  FC        3:0:1:0  no       yes         0  50:24:b5:6a:4a:10:00:00  alpha-b:fc1     fc-hba-0
kvA7r2Qm9T02  0x00000201  active (1)   FC        2:0:0:1  yes      no          0  50:24:b5:61:4a:10:00:00  alpha-a:fc0     fc-hba-0
kvA7r2Qm9T02  0x00000202  active (1)   FC        3:0:0:1  yes      no          0  50:24:b5:62:4a:10:00:00  alpha-a:fc1     fc-hba-0
kvA7r2Qm9T02  0x80000203  active (1)   FC        2:0:1:1  no       yes         0  50:24:b5:69:4a:10:00:00  alpha-b:fc0     fc-hba-0
kvA7r2Qm9T02  0x00000204  active (1)   FC        3:0:1:1  no       yes         0  50:24:b5:6a:4a:10:00:00  alpha-b:fc1     fc-hba-0
kvA7r2Qm9U01  0x00000301  active (1)   FC        2:0:1:2  yes      no          0  50:24:b5:69:4a:10:00:00  alpha-b:fc0     fc-hba-0
kvA7r2Qm9U01  0x00000302  passive (2)  FC        3:0:1:2  no       no          0  50:24:b5:6a:4a:10:00:00  alpha-b:fc1     fc-hba-0
kvA7r2Qm9W01  0x00000401  active (1)   FC        2:0:0:3  yes      no          0  50:24:b5:61:4a:10:00:00  alpha-a:fc0     fc-hba-0
kvA7r2Qm9W01  0x00000402  passive (2)  FC        3:0:0:3  no       no         10  50:24:b5:62:4a:10:00:00  alpha-a:fc1     fc-hba-0
kvA7r2Qm9W01  0x00000403  passive (2)  FC        2:0:1:3  no       yes       100  50:24:b5:69:4a:10:00:00  alpha-b:fc0     fc-hba-0
kvB3h8Ls4E01  0x00000501  active (1)   iSCSI     4:0:0:0  yes      no          0  192.168.10.21:3260       beta:ip0        MS-iSCSI-Initiator-0000_0
kvB3h8Ls4E01  0x00000502  active (1)   iSCSI     4:0:1:0  yes      no          0  192.168.20.21:3260       beta:ip1        MS-iSCSI-Initiator-0000_0
kvB3h8Ls4E02  0x00000601  active (1)   iSCSI     4:0:2:1  yes      no          0  [fd4b:5600:10::21]:3260  beta:ip0        MS-iSCSI-Initiator-0000_0
kvB3h8Ls4E02  0x00000602  active (1)   iSCSI     4:0:3:1  yes      no          0  [fd4b:5600:20::21]:3260  beta:ip1        MS-iSCSI-Initiator-0000_0
kvA7r2Qm9X01  0x00000701  active (1)   FC        2:0:0:4  yes      no          0  50:24:b5:61:4a:10:00:00  alpha-a:fc0     fc-hba-0
kvA7r2Qm9X01  0x00000702  passive (2)  FC        3:0:1:4  no       yes         0  50:24:b5:6a:4a:10:00:00  alpha-b:fc1     fc-hba-0
kvA7r2Qm9X01  0x00000703  passive (2)  iSCSI     4:0:4:4  no       no          0  192.168.10.11:3260       alpha-a:ip0     MS-iSCSI-Initiator-0000_0
kvA7r2Qm9X01  0x00000704  passive (2)  iSCSI     4:0:5:4  no       no          0  [fd4b:5600:20::11]:3260  alpha-a:ip1     MS-iSCSI-Initiator-0000_0
)");
}

TEST_F(PathsTest, PathsOfOneLun) {
    const ToolRun run = runTool({"paths", "kvB3h8Ls4E01", "--simulate", "standard"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(
        run.out,
        R"(SERIAL        ID          STATE       PROTOCOL  ADDRESS  PRIMARY  PROXY  WEIGHT  TARGET              TARGET ADAPTER  ADAPTER
kvB3h8Ls4E01  0x00000501  active (1)  iSCSI     4:0:0:0  yes      no          0  192.168.10.21:3260  beta:ip0        MS-iSCSI-Initiator-0000_0
kvB3h8Ls4E01  0x00000502  active (1)  iSCSI     4:0:1:0  yes      no          0  192.168.20.21:3260  beta:ip1        MS-iSCSI-Initiator-0000_0
)");
}

TEST_F(PathsTest, UnknownSerialIsNotFound) {
    EXPECT_EQ(runTool({"paths", "nothing", "--simulate", "standard"}).exitCode, 3);
}

TEST_F(PathsTest, EmptyHostHasNoPaths) {
    const ToolRun run = runTool({"paths", "--simulate", "empty"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "quistactl: no paths found\n");
}

// ---- errors

TEST_F(ErrorsTest, AllCodesWithTheirTexts) {
    const json document = runTool({"errors", "--json"}).json();
    ASSERT_EQ(document["errors"].size(), 55u);
    EXPECT_EQ(document["errors"][34]["code"], 35);
    EXPECT_EQ(document["errors"][34]["name"], "DSM_ENABLE_PATH_FAILED");
    EXPECT_EQ(document["errors"][34]["text"], "The Execute Method for enabling the path  failed.  ")
        << "byte for byte";
    EXPECT_EQ(document["errors"][46]["text"], nullptr);
}

TEST_F(ErrorsTest, SmallNumberHasTwoMeanings) {
    const json errors = runTool({"errors", "14", "--json"}).json()["errors"];
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0]["name"], "DSM_WMI_FAILURE");
    EXPECT_EQ(errors[0]["source"], "quista");
    EXPECT_EQ(errors[1]["source"], "Windows") << "the text that the log prints for it";
}

TEST_F(ErrorsTest, DecimalAndHexadecimalAreTheSame) {
    const json hex = runTool({"errors", "0x80041010", "--json"}).json()["errors"];
    ASSERT_EQ(hex.size(), 1u);
    EXPECT_EQ(hex[0]["name"], "WBEM_E_INVALID_CLASS");
    EXPECT_EQ(runTool({"errors", "2147749904", "--json"}).json()["errors"], hex);
}

TEST_F(ErrorsTest, UnknownCodeIsNotFound) {
    const ToolRun run = runTool({"errors", "0xE0000008", "--json"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.json()["errors"], IsEmpty());
    EXPECT_THAT(run.err, HasSubstr("0xE0000008"));
}

TEST_F(ErrorsTest, NarrowTerminalBreaksTheTexts) {
    const ToolRun run = runTool({"errors", "33"}, {.columns = 80});
    EXPECT_THAT(run.out, HasSubstr("\n                                                   "));
    for (std::size_t start = 0; start < run.out.size();) {
        const std::size_t end = run.out.find('\n', start);
        EXPECT_LE(end - start, 80u);
        start = end + 1;
    }
}

// ---- every command

class EveryCommandTest : public ToolTest, public testing::WithParamInterface<const char*> {};

struct NeededArguments {
    const char* command;
    std::vector<std::string> values;
};

// What a command that needs arguments gets.
const NeededArguments kNeededArguments[] = {
    {"lun", {"kvA7r2Qm9T01"}},
    {"path activate", {"0x101"}},
    {"path passivate", {"0x103"}},
    {"path enable", {"0x101"}},
    {"path disable", {"0x101"}},
    {"path refresh", {"0x101"}},
    {"path weight", {"0x101", "0"}},
    {"policy show", {"kvA7r2Qm9T01"}},
    {"policy set", {"kvA7r2Qm9T01", "2"}},
    {"reservation set", {"0123456789abcdef"}},
    {"timers set", {"RetryCount", "4"}},
    {"parameters set", {"RetryCount", "4"}},
    {"simulate new", {"host.mof", "--force"}},
};

std::vector<std::string> commandLine(const cli::Command& command, const std::string& host) {
    const std::string name = command.name();
    const std::size_t blank = name.find(' ');
    std::vector<std::string> arguments = {name.substr(0, blank)};
    if (blank != std::string::npos) arguments.push_back(name.substr(blank + 1));
    for (const auto& [needing, values] : kNeededArguments) {
        if (name == needing) arguments.insert(arguments.end(), values.begin(), values.end());
    }
    arguments.insert(arguments.end(), {"--simulate", host});
    return arguments;
}

TEST_P(EveryCommandTest, JsonIsOneDocumentWithTheExitStatus) {
    for (const auto& command : cli::makeCommands()) {
        std::vector<std::string> arguments = commandLine(*command, GetParam());
        arguments.emplace_back("--json");
        const ToolRun run = runTool(arguments);
        const json document = run.json();
        EXPECT_EQ(document["command"], command->name());
        EXPECT_EQ(document["exitCode"], run.exitCode);
        EXPECT_EQ(document["schemaVersion"], 1);
    }
}

TEST_P(EveryCommandTest, FailureIsToldOnStandardError) {
    for (const auto& command : cli::makeCommands()) {
        const ToolRun run = runTool(commandLine(*command, GetParam()));
        EXPECT_EQ(run.err.find("quistactl: error: ") != std::string::npos, run.exitCode != 0)
            << command->name() << "\n"
            << run.err;
    }
}

INSTANTIATE_TEST_SUITE_P(SampleHosts, EveryCommandTest,
                         testing::Values("standard", "degraded", "empty", "bare"));

}  // namespace
}  // namespace quista::test

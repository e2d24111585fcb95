// quistactl.exe as users start it: bytes on standard output, chatter, exit status.
#include <windows.h>

#include <gmock/gmock.h>

#include "tests/cli/tool_test.h"

namespace quista::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using ProgramTest = ToolTest;

TEST_F(ProgramTest, FileGetsUtf8WithPlainLineEnds) {
    const ToolRun run = runProgramFile(L"luns --simulate standard");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, StartsWith("SERIAL")) << "no byte-order mark";
    EXPECT_THAT(run.out, Not(HasSubstr("\r")));
    EXPECT_EQ(run.err, "");
}

TEST_F(ProgramTest, SameOutputAsInTheProcess) {
    EXPECT_EQ(runProgramFile(L"paths --simulate degraded").out,
              runTool({"paths", "--simulate", "degraded"}).out);
}

TEST_F(ProgramTest, ExitStatusReachesTheCaller) {
    EXPECT_EQ(runProgramFile(L"errors 14").exitCode, 0);
    EXPECT_EQ(runProgramFile(L"luns --simulate bare").exitCode, 1);
    EXPECT_EQ(runProgramFile(L"no-such-command").exitCode, 2);
    EXPECT_EQ(runProgramFile(L"lun nothing --simulate standard").exitCode, 3);
}

TEST_F(ProgramTest, ArgumentsAreUnicode) {
    const ToolRun run = runProgramFile(L"lun \u53f0\u5317 --simulate standard --json");
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.json()["arguments"][1], "\xe5\x8f\xb0\xe5\x8c\x97");
}

// The library complains on standard output when its log cannot be opened.
TEST_F(ProgramTest, ChatterOfTheLibraryDoesNotSpoilTheDocument) {
    CreateDirectoryW(userFolder.path(L"Quista").c_str(), nullptr);
    CreateDirectoryW(userFolder.path(L"Quista\\MPIOlog.dat").c_str(), nullptr);
    const ToolRun run = runProgramFile(L"luns --simulate standard --json");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.json()["luns"].size(), 7u);
    EXPECT_THAT(run.err, HasSubstr("Unable to open the MPIOlog.dat file"));
}

// Without a simulated host the machine's own WMI answers; here it has no MPIO.
TEST_F(ProgramTest, MachineWithoutMpioIsTold) {
    const ToolRun run = runProgramFile(L"luns --json");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.json()["status"]["code"], 0);
    EXPECT_THAT(run.err, HasSubstr("cannot list the LUNs"));
}

}  // namespace
}  // namespace quista::test

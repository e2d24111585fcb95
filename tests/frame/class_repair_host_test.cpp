// DSMRepairWMI on a host: classes that were missing exist afterwards, and what becomes of the
// compiler.
#include "tests/frame/class_repair_host.h"

#include "quista/mpio.h"
#include "tests/support/console_capture.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr unsigned char kMpioClasses = 0;
constexpr unsigned char kVendorClasses = 1;

const LogLine kRepaired{"DSM recompiling MOFs!!", 54};

class ClassRepairHostTest : public RepairableHostTest {
  protected:
    std::vector<std::wstring> compiledFiles() const {
        std::vector<std::wstring> files;
        for (const simulator::CallRecord& call : host->trace()) {
            if (call.method == L"CompileFile") files.push_back(call.detail);
        }
        return files;
    }
};

// ---- Classes that were missing

TEST_F(ClassRepairHostTest, VendorClassesExistAfterwards) {
    openSession();
    takeClass(L"KORVADSM_LUNINFO");
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), DSM_ERROR);
    log.clear();
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), 0u);
    EXPECT_THAT(log.lines(), ElementsAre(kRepaired));
    for (const wchar_t* name : {L"KORVADSM", L"KORVADSM_LUNINFO", L"KORVADSM_PATHINFO"}) {
        EXPECT_TRUE(takeClass(name));
    }
    EXPECT_FALSE(takeClass(L"MPIO_DISK_INFO"));
}

TEST_F(ClassRepairHostTest, MpiosClassesExistAfterwards) {
    addVendorClasses();
    EXPECT_EQ(openSession(), DSM_WMI_PARSING_ERROR);
    unsigned long count = 0;
    EXPECT_EQ(DSMGetNumberMpioLUNs(&count), DSM_WMI_PARSING_ERROR);
    log.clear();
    EXPECT_EQ(DSMRepairWMI(kMpioClasses), 0u);
    EXPECT_EQ(DSMGetNumberMpioLUNs(&count), DSM_SUCCESS);
    EXPECT_EQ(count, 3u);
    EXPECT_THAT(log.lines(), ElementsAre(kRepaired));
    for (const wchar_t* name : {L"PDO_INFORMATION", L"DSM_LB_Operations", L"MPIO_DISK_INFO",
                                L"MPIO_TIMERS_COUNTERS", L"MPIO_WMI_METHODS"}) {
        EXPECT_TRUE(takeClass(name)) << testing::PrintToString(std::wstring(name));
    }
}

TEST_F(ClassRepairHostTest, MpiosFilesAreCompiledInTheirOrder) {
    EXPECT_EQ(DSMRepairWMI(kMpioClasses), 0u);
    EXPECT_THAT(compiledFiles(), ElementsAre(folder.path(L"pdo.mof"), folder.path(L"lbpolicy.mof"),
                                             folder.path(L"mpio.mof")));
    EXPECT_FALSE(takeClass(L"KORVADSM_LUNINFO"));
}

// The one file needs classes of the other.
TEST_F(ClassRepairHostTest, AMissingFileFailsThoseThatNeedIt) {
    ASSERT_TRUE(DeleteFileW(L"pdo.mof"));
    const unsigned long code = DSMRepairWMI(kMpioClasses);
    EXPECT_NE(code, 0u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"MPIO and/or KORVADSM WMI classes missing!!", code}));
    EXPECT_EQ(compiledFiles().size(), 3u);
    EXPECT_TRUE(takeClass(L"DSM_LB_Operations"));
    EXPECT_FALSE(takeClass(L"MPIO_GET_DESCRIPTOR"));
}

TEST_F(ClassRepairHostTest, DirectoryWithoutSeparatorFails) {
    machine.setText(L"SOFTWARE\\Velmora\\MPIO", L"InstallDir", folder.path());
    const unsigned long code = DSMRepairWMI(kVendorClasses);
    EXPECT_NE(code, 0u);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"MPIO and/or KORVADSM WMI classes missing!!", code}));
    EXPECT_THAT(compiledFiles(), ElementsAre(folder.path() + L"korvadsm.mof"));
    EXPECT_FALSE(takeClass(L"KORVADSM_LUNINFO"));
}

TEST_F(ClassRepairHostTest, FileWithoutAutoRecovery_IsCompiledAndCountsAsFailure) {
    writeFile(L"korvadsm.mof", "class KORVADSM_LUNINFO { [key] string InstanceName; };\n");
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 2u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"MPIO and/or KORVADSM WMI classes missing!!", 2}));
    EXPECT_TRUE(takeClass(L"KORVADSM_LUNINFO"));
}

TEST_F(ClassRepairHostTest, TheCompilerPrintsToTheConsole) {
    ConsoleCapture console;
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_THAT(console.stop(), HasSubstr("korvadsm.mof: compiled"));
}

// ---- The compiler

TEST_F(ClassRepairHostTest, NoCompiler_ItsResultIsReturned) {
    for (const HRESULT refusal : {REGDB_E_CLASSNOTREG, E_OUTOFMEMORY, E_ACCESSDENIED}) {
        host->setCompilerFailure(refusal);
        EXPECT_EQ(DSMRepairWMI(kVendorClasses), logged(refusal));
        EXPECT_THAT(log.take(), ElementsAre(LogLine{"Could not create MofCompiler!", 55}));
    }
    EXPECT_THAT(compiledFiles(), IsEmpty());
    EXPECT_EQ(host->liveObjects(), kNothing);
}

TEST_F(ClassRepairHostTest, TheCompilerIsMadeBeforeTheDirectoryIsSought) {
    machine.eraseValue(L"SOFTWARE\\Velmora\\MPIO", L"InstallDir");
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_EQ(host->liveObjects().compilers, 1u);
    host->setCompilerFailure(E_OUTOFMEMORY);
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), logged(E_OUTOFMEMORY));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"Could not find InstallDir!", 55},
                                         LogLine{"Could not create MofCompiler!", 55}));
    // Kept: a compiler that cannot be made takes the first one's place too.
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(host->liveObjects(), (simulator::LiveObjects{.compilers = 1}));
}

TEST_F(ClassRepairHostTest, TheCompilerStaysUntilTheSessionIsClosed) {
    makeHealthy();
    openSession();
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_EQ(host->liveObjects(),
              (simulator::LiveObjects{.locators = 1, .services = 2, .compilers = 1}));
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(host->liveObjects(), kNothing);
}

TEST_F(ClassRepairHostTest, ASessionIsNotNeeded) {
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_EQ(host->liveObjects(), (simulator::LiveObjects{.compilers = 1}));
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(host->liveObjects(), kNothing);
}

// Kept: the second compiler takes the first one's place, which is never released.
TEST_F(ClassRepairHostTest, ASecondRepairLeavesTheFirstCompilerAlive) {
    EXPECT_EQ(DSMRepairWMI(kVendorClasses), 0u);
    EXPECT_EQ(DSMRepairWMI(kMpioClasses), 0u);
    EXPECT_EQ(host->liveObjects(), (simulator::LiveObjects{.compilers = 2}));
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(host->liveObjects(), (simulator::LiveObjects{.compilers = 1}));
}

}  // namespace
}  // namespace quista::test

// On which versions of Windows DSMInitialize has MPIO's classes compiled anew. The version goes by
// the program, so each case runs in a process of its own, which prints status and log.
#include <cstdio>

#include "tests/frame/session_test.h"
#include "tests/support/windows_version.h"

namespace quista::test {
namespace {

using testing::HasSubstr;

constexpr const wchar_t* kAllowRepair = L"QUISTA_TEST_ALLOW_REPAIR";

// ---- In the process of its own

class VersionCase : public SessionTest {
  protected:
    VersionCase() {
        addVendorClasses();
        setInstallDir();
        const char* classes =
            "#pragma autorecover\n"
            "class MPIO_DISK_INFO { [key] string InstanceName; uint32 NumberDrives; };\n";
        const char* instance =
            "#pragma autorecover\n"
            "instance of MPIO_DISK_INFO { InstanceName = \"0\"; NumberDrives = 1; };\n";
        // The second file needs the first: the order counts.
        writeFile(L"pdo.mof", "#pragma autorecover\n");
        writeFile(L"lbpolicy.mof", classes);
        writeFile(L"mpio.mof", instance);
    }

    void initializeAndPrint() {
        const unsigned long status = DSMInitialize(_wtoi(_wgetenv(kAllowRepair)));
        std::printf("\nstatus %lu", status);
        for (const LogLine& line : log.lines()) {
            std::printf("; %s %08lX", line.place.c_str(), line.code);
        }
        std::printf(".\n");
    }
};

TEST_F(VersionCase, DISABLED_DiskClassMissing) {
    initializeAndPrint();
}

TEST_F(VersionCase, DISABLED_DiskClassMissingWithoutInstallDir) {
    machine.eraseValue(L"SOFTWARE\\Velmora\\MPIO", L"InstallDir");
    initializeAndPrint();
}

TEST_F(VersionCase, DISABLED_DiskClassMissingWithoutCompiler) {
    host->setCompilerFailure(REGDB_E_CLASSNOTREG);
    initializeAndPrint();
}

TEST_F(VersionCase, DISABLED_DiskClassMissingAndCimv2Refused) {
    host.failConnect(kCimv2, result(WBEM_E_ACCESS_DENIED));
    initializeAndPrint();
}

TEST_F(VersionCase, DISABLED_WmiRefused) {
    host.failConnect(kWmi, result(WBEM_E_ACCESS_DENIED));
    initializeAndPrint();
}

TEST_F(VersionCase, DISABLED_Healthy) {
    addMpioDisks();
    initializeAndPrint();
}

// ---- In the test's own process

class SessionVersionTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!canChooseWindowsVersion()) GTEST_SKIP() << "the version of Windows is given here";
    }

    /// What a case prints under a version of Windows.
    static std::string outputOf(const wchar_t* version, int allowRepair, const wchar_t* name) {
        SetEnvironmentVariableW(kAllowRepair, std::to_wstring(allowRepair).c_str());
        const ProgramRun run =
            VersionedProgram(version).runTest(std::wstring(L"VersionCase.DISABLED_") + name);
        EXPECT_EQ(run.exitCode, 0u) << run.output;
        return run.output;
    }
};

constexpr const char* kNotRepaired =
    "status 15; ParseDisksInfo: IEnumWbemClassObject::Next 80041010; DSM_INITIALIZED 0000002D.";
constexpr const char* kRepaired =
    "status 0; ParseDisksInfo: IEnumWbemClassObject::Next 80041010; "
    "DSM recompiling MOFs!! 00000036; DSM_INITIALIZED 0000002D.";

TEST_F(SessionVersionTest, Before60_RepairsWhateverTheArgument) {
    EXPECT_THAT(outputOf(L"win2003", 0, L"DiskClassMissing"), HasSubstr(kRepaired));
    EXPECT_THAT(outputOf(L"win2003", 1, L"DiskClassMissing"), HasSubstr(kRepaired));
}

TEST_F(SessionVersionTest, On60_RepairsWhenAllowed) {
    EXPECT_THAT(outputOf(L"vista", 0, L"DiskClassMissing"), HasSubstr(kNotRepaired));
    EXPECT_THAT(outputOf(L"vista", 1, L"DiskClassMissing"), HasSubstr(kRepaired));
    EXPECT_THAT(outputOf(L"vista", -1, L"DiskClassMissing"), HasSubstr(kRepaired));
}

TEST_F(SessionVersionTest, From61_DoesNotRepair) {
    EXPECT_THAT(outputOf(L"win7", 1, L"DiskClassMissing"), HasSubstr(kNotRepaired));
    EXPECT_THAT(outputOf(L"win8", 1, L"DiskClassMissing"), HasSubstr(kNotRepaired));
}

TEST_F(SessionVersionTest, HealthyHost_NoRepairOnAnyVersion) {
    for (const wchar_t* version : {L"win2003", L"vista", L"win7"}) {
        EXPECT_THAT(outputOf(version, 1, L"Healthy"),
                    HasSubstr("status 0; DSM_INITIALIZED 0000002D."));
    }
}

// A repair without installation directory reports success, and the disks are counted once more.
TEST_F(SessionVersionTest, NoInstallDir_CountsAgainAndReturnsTheSecondStatus) {
    EXPECT_THAT(outputOf(L"vista", 1, L"DiskClassMissingWithoutInstallDir"),
                HasSubstr("status 15; ParseDisksInfo: IEnumWbemClassObject::Next 80041010; "
                          "Could not find InstallDir! 00000037; "
                          "ParseDisksInfo: IEnumWbemClassObject::Next 80041010; "
                          "DSM_INITIALIZED 0000002D."));
}

TEST_F(SessionVersionTest, RepairFails_FirstStatusStays) {
    EXPECT_THAT(outputOf(L"vista", 1, L"DiskClassMissingWithoutCompiler"),
                HasSubstr("status 15; ParseDisksInfo: IEnumWbemClassObject::Next 80041010; "
                          "Could not create MofCompiler! 00000037; DSM_INITIALIZED 0000002D."));
}

// The repair answers any failure of the steps before, and a count that then succeeds makes the
// whole call a success.
TEST_F(SessionVersionTest, Cimv2Refused_SuccessfulCountMakesTheStatusZero) {
    EXPECT_THAT(outputOf(L"win2003", 0, L"DiskClassMissingAndCimv2Refused"),
                HasSubstr("status 0; IWbemLocator::ConnectServer 80041003; "
                          "DSM recompiling MOFs!! 00000036; DSM_INITIALIZED 0000002D."));
}

TEST_F(SessionVersionTest, WmiRefused_CountAfterTheRepairFails) {
    EXPECT_THAT(outputOf(L"win2003", 0, L"WmiRefused"),
                HasSubstr("status 14; IWbemLocator::ConnectServer 80041003; "
                          "DSM recompiling MOFs!! 00000036; "
                          "DSMGetNumberMpioLUNs:CreateInstanceEnum(DSM_DISKS) 80004003; "
                          "DSM_INITIALIZED 0000002D."));
}

}  // namespace
}  // namespace quista::test

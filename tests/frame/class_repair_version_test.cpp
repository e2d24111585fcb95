// On which versions of Windows DSMInitialize brings lost classes back, with MOF files as they are
// installed. The version goes by the program, so each case runs in a process of its own.
#include <cstdio>

#include "tests/frame/class_repair_host.h"
#include "tests/support/windows_version.h"

namespace quista::test {
namespace {

using testing::HasSubstr;

constexpr const wchar_t* kAllowRepair = L"QUISTA_TEST_ALLOW_REPAIR";

// ---- In the process of its own

class RepairVersionCase : public RepairableHostTest {
  protected:
    void initializeAndPrint() {
        const unsigned long status = DSMInitialize(_wtoi(_wgetenv(kAllowRepair)));
        std::printf("\nstatus %lu", status);
        for (const LogLine& line : log.lines()) {
            std::printf("; %s %08lX", line.place.c_str(), line.code);
        }
        const unsigned compilers = host->liveObjects().compilers;
        std::printf("; compilers %u", compilers);
        std::printf("; MPIO %d, vendor %d.\n", takeClass(L"MPIO_GET_DESCRIPTOR") ? 1 : 0,
                    takeClass(L"KORVADSM_LUNINFO") ? 1 : 0);
    }
};

TEST_F(RepairVersionCase, DISABLED_AllClassesMissing) {
    initializeAndPrint();
}

TEST_F(RepairVersionCase, DISABLED_MpiosClassesMissing) {
    addVendorClasses();
    initializeAndPrint();
}

TEST_F(RepairVersionCase, DISABLED_VendorClassesMissing) {
    addMpioDisks();
    initializeAndPrint();
}

// ---- In the test's own process

class ClassRepairVersionTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!canChooseWindowsVersion()) GTEST_SKIP() << "the version of Windows is given here";
    }

    static std::string outputOf(const wchar_t* version, int allowRepair, const wchar_t* name) {
        SetEnvironmentVariableW(kAllowRepair, std::to_wstring(allowRepair).c_str());
        const ProgramRun run =
            VersionedProgram(version).runTest(std::wstring(L"RepairVersionCase.DISABLED_") + name);
        EXPECT_EQ(run.exitCode, 0u) << run.output;
        return run.output;
    }
};

constexpr const char* kAllRepaired =
    "status 0; ParseDisksInfo: IEnumWbemClassObject::Next 80041010; "
    "DSM recompiling MOFs!! 00000036; DSMCheckForKORVADSMLUNINFO() 80041002; "
    "DSM recompiling MOFs!! 00000036; DSM_INITIALIZED 0000002D; compilers 2; MPIO 1, vendor 1.";
constexpr const char* kNothingRepaired =
    "status 15; ParseDisksInfo: IEnumWbemClassObject::Next 80041010; DSM_INITIALIZED 0000002D; "
    "compilers 0; MPIO 0, vendor 0.";

TEST_F(ClassRepairVersionTest, AllClassesMissing) {
    EXPECT_THAT(outputOf(L"win2003", 0, L"AllClassesMissing"), HasSubstr(kAllRepaired));
    EXPECT_THAT(outputOf(L"vista", 1, L"AllClassesMissing"), HasSubstr(kAllRepaired));
    EXPECT_THAT(outputOf(L"vista", 0, L"AllClassesMissing"), HasSubstr(kNothingRepaired));
    EXPECT_THAT(outputOf(L"win7", 1, L"AllClassesMissing"), HasSubstr(kNothingRepaired));
    EXPECT_THAT(outputOf(L"win8", 1, L"AllClassesMissing"), HasSubstr(kNothingRepaired));
}

TEST_F(ClassRepairVersionTest, MpiosClassesMissing) {
    constexpr const char* repaired =
        "status 0; ParseDisksInfo: IEnumWbemClassObject::Next 80041010; "
        "DSM recompiling MOFs!! 00000036; DSM_INITIALIZED 0000002D; compilers 1; "
        "MPIO 1, vendor 1.";
    constexpr const char* notRepaired =
        "status 15; ParseDisksInfo: IEnumWbemClassObject::Next 80041010; "
        "DSM_INITIALIZED 0000002D; compilers 0; MPIO 0, vendor 1.";
    EXPECT_THAT(outputOf(L"win2003", 0, L"MpiosClassesMissing"), HasSubstr(repaired));
    EXPECT_THAT(outputOf(L"vista", 1, L"MpiosClassesMissing"), HasSubstr(repaired));
    EXPECT_THAT(outputOf(L"vista", 0, L"MpiosClassesMissing"), HasSubstr(notRepaired));
    EXPECT_THAT(outputOf(L"win7", 1, L"MpiosClassesMissing"), HasSubstr(notRepaired));
}

// The vendor's classes are brought back on every version.
TEST_F(ClassRepairVersionTest, VendorClassesMissing) {
    for (const wchar_t* version : {L"win2003", L"vista", L"win7", L"win8"}) {
        EXPECT_THAT(outputOf(version, 0, L"VendorClassesMissing"),
                    HasSubstr("status 0; DSMCheckForKORVADSMLUNINFO() 80041002; "
                              "DSM recompiling MOFs!! 00000036; DSM_INITIALIZED 0000002D; "
                              "compilers 1; MPIO 1, vendor 1."));
    }
}

}  // namespace
}  // namespace quista::test

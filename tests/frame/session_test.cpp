// DSMInitialize and DSMUninitialize: what is connected, in which order, and what is left when a
// step fails.
#include "tests/frame/session_test.h"

#include "quista/mpio.h"
#include "tests/frame/recording_locator.h"
#include "tests/support/allocation_spy.h"
#include "tests/support/console_capture.h"
#include "tests/support/import_patch.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::Not;

/// The calls of the trace, each as "Method(class or namespace)".
std::vector<std::wstring> callsOf(const SimulatedHost& host) {
    std::vector<std::wstring> calls;
    for (const simulator::CallRecord& call : host->trace()) {
        calls.push_back(call.method + L"(" + call.className + L")");
    }
    return calls;
}

TEST_F(SessionTest, Initialize_HealthyHost_ReturnsZeroAndOneLine) {
    makeHealthy();
    ConsoleCapture console;
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    EXPECT_EQ(console.stop(), "");
    EXPECT_THAT(log.lines(), ElementsAre(kInitialised));
    EXPECT_EQ(host->liveObjects(), kOpenSession);
}

TEST_F(SessionTest, Initialize_HealthyHost_CallsWmiInOrder) {
    makeHealthy();
    host->clearTrace();
    DSMInitialize(0);
    EXPECT_THAT(callsOf(host),
                ElementsAre(L"CreateInstance(WbemLocator)", L"ConnectServer(root\\wmi)",
                            L"ConnectServer(root\\cimv2)", L"CreateInstanceEnum(MPIO_DISK_INFO)",
                            L"Next(MPIO_DISK_INFO)", L"Get(MPIO_DISK_INFO)",
                            L"GetObject(KORVADSM_LUNINFO)"));
}

TEST_F(SessionTest, InitializeAndUninitialize_LeaveNoAllocation) {
    makeHealthy();
    openSession();
    closeSession();
    const AllocationScope allocations;
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    EXPECT_THAT(allocations.survivingTexts(), ElementsAre());
    DSMUninitialize();
    EXPECT_THAT(allocations.survivors(), ElementsAre());
}

TEST_F(SessionTest, InitializeThatFails_LeavesNoText) {
    host.failConnect(kWmi, result(WBEM_E_ACCESS_DENIED));
    host.failConnect(kCimv2, result(WBEM_E_ACCESS_DENIED));
    const AllocationScope allocations;
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    EXPECT_THAT(allocations.survivingTexts(), ElementsAre());
}

// ---- The locator

TEST_F(SessionTest, Initialize_NoLocator_26AndLineWithCodeZero) {
    makeHealthy();
    host->setLocatorFailure(REGDB_E_CLASSNOTREG);
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    // Kept: the failure's own code is not logged.
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"CoCreateInstance(WbemLocator)", 0}, kInitialised));
    EXPECT_EQ(host->liveObjects(), kNothing);
}

TEST_F(SessionTest, Initialize_NoLocator_ConnectsNothing) {
    makeHealthy();
    host->setLocatorFailure(E_OUTOFMEMORY);
    host->clearTrace();
    DSMInitialize(0);
    EXPECT_THAT(callsOf(host), ElementsAre(L"CreateInstance(WbemLocator)"));
}

// ---- The connections

TEST_F(SessionTest, Initialize_WmiRefused_26AndOtherConnectionStays) {
    makeHealthy();
    host.failConnect(kWmi, result(WBEM_E_ACCESS_DENIED));
    host->clearTrace();
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"IWbemLocator::ConnectServer", logged(WBEM_E_ACCESS_DENIED)},
                            kInitialised));
    // Neither disks nor classes are looked at.
    EXPECT_THAT(callsOf(host),
                ElementsAre(L"CreateInstance(WbemLocator)", L"ConnectServer(root\\wmi)",
                            L"ConnectServer(root\\cimv2)"));
    EXPECT_EQ(host->liveObjects(), (simulator::LiveObjects{.locators = 1, .services = 1}));
}

TEST_F(SessionTest, Initialize_Cimv2Refused_26AndWmiIsUsable) {
    makeHealthy();
    host.failConnect(kCimv2, result(WBEM_E_INVALID_NAMESPACE));
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{"IWbemLocator::ConnectServer",
                                                logged(WBEM_E_INVALID_NAMESPACE)},
                                        kInitialised));
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), 0u);
    unsigned long count = 0;
    EXPECT_EQ(DSMGetNumberMpioLUNs(&count), DSM_SUCCESS);
    EXPECT_EQ(count, 2u);
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(SessionTest, Initialize_BothRefused_26AndBothAreLogged) {
    makeHealthy();
    host.failConnect(kWmi, result(WBEM_E_ACCESS_DENIED));
    host.failConnect(kCimv2, result(WBEM_E_TRANSPORT_FAILURE));
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    EXPECT_THAT(
        log.lines(),
        ElementsAre(LogLine{"IWbemLocator::ConnectServer", logged(WBEM_E_ACCESS_DENIED)},
                    LogLine{"IWbemLocator::ConnectServer", logged(WBEM_E_TRANSPORT_FAILURE)},
                    kInitialised));
}

TEST_F(SessionTest, Initialize_ConnectionWithPositiveResult_IsAFailure) {
    makeHealthy();
    host.failConnect(kWmi, result(WBEM_S_TIMEDOUT));
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    EXPECT_THAT(
        log.lines(),
        ElementsAre(LogLine{"IWbemLocator::ConnectServer", logged(WBEM_S_TIMEDOUT)}, kInitialised));
}

// ---- The count of MPIO's disks

TEST_F(SessionTest, Initialize_DisksCannotBeEnumerated_14) {
    makeHealthy();
    host.failEnumeration(L"MPIO_DISK_INFO", result(WBEM_E_ACCESS_DENIED));
    host->clearTrace();
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_FAILURE);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetNumberMpioLUNs:CreateInstanceEnum(DSM_DISKS)",
                                    logged(WBEM_E_ACCESS_DENIED)},
                            kInitialised));
    EXPECT_THAT(callsOf(host), Not(testing::Contains(L"GetObject(KORVADSM_LUNINFO)")));
    EXPECT_EQ(host->liveObjects(), kOpenSession);
}

TEST_F(SessionTest, Initialize_NoDiskInstance_15AndTheEndIsLogged) {
    makeHealthy();
    host->removeInstances(kWmi, L"MPIO_DISK_INFO");
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"ParseDisksInfo: IEnumWbemClassObject::Next", WBEM_S_FALSE},
                            kInitialised));
}

TEST_F(SessionTest, Initialize_DiskClassMissing_NoRepairOnCurrentWindows) {
    addVendorClasses();
    setInstallDir();
    EXPECT_EQ(DSMInitialize(1), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"ParseDisksInfo: IEnumWbemClassObject::Next",
                                                 logged(WBEM_E_INVALID_CLASS)},
                                         kInitialised));
    EXPECT_EQ(host->liveObjects(), kOpenSession) << "no compiler was made";
}

TEST_F(SessionTest, Initialize_DiskClassMissingAtCreation_14) {
    addVendorClasses();
    host->setUnknownClassAtCreation(true);
    EXPECT_EQ(DSMInitialize(1), DSM_WMI_FAILURE);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMGetNumberMpioLUNs:CreateInstanceEnum(DSM_DISKS)",
                                    logged(WBEM_E_INVALID_CLASS)},
                            kInitialised));
}

// ---- The vendor's classes

TEST_F(SessionTest, Initialize_VendorClassMissing_RepairFailureIsLoggedAndStatusStays) {
    addMpioDisks();
    host->setCompilerFailure(REGDB_E_CLASSNOTREG);
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMCheckForKORVADSMLUNINFO()", logged(WBEM_E_NOT_FOUND)},
                            LogLine{"Could not create MofCompiler!", 55},
                            LogLine{"DSM_INITIALIZED failed to repair KORVADSM classes",
                                    logged(REGDB_E_CLASSNOTREG)},
                            kInitialised));
}

TEST_F(SessionTest, Initialize_VendorClassMissing_NoInstallDirCountsAsRepaired) {
    addMpioDisks();
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"DSMCheckForKORVADSMLUNINFO()", logged(WBEM_E_NOT_FOUND)},
                            LogLine{"Could not find InstallDir!", 55}, kInitialised));
}

TEST_F(SessionTest, Initialize_VendorClassMissing_IsCompiledFromTheInstallDir) {
    addMpioDisks();
    setInstallDir();
    writeFile(L"korvadsm.mof",
              "#pragma autorecover\nclass KORVADSM_LUNINFO { [key] string InstanceName; };\n");
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    EXPECT_THAT(log.take(),
                ElementsAre(LogLine{"DSMCheckForKORVADSMLUNINFO()", logged(WBEM_E_NOT_FOUND)},
                            LogLine{"DSM recompiling MOFs!!", 54}, kInitialised));
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), 0u);
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(SessionTest, Initialize_VendorClassFileMissing_RepairFailureIsLogged) {
    addMpioDisks();
    setInstallDir();
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    const LogLines lines = log.lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], (LogLine{"DSMCheckForKORVADSMLUNINFO()", logged(WBEM_E_NOT_FOUND)}));
    EXPECT_EQ(lines[1].place, "MPIO and/or KORVADSM WMI classes missing!!");
    EXPECT_NE(lines[1].code, 0u);
    EXPECT_EQ(lines[2],
              (LogLine{"DSM_INITIALIZED failed to repair KORVADSM classes", lines[1].code}));
    EXPECT_EQ(lines[3], kInitialised);
}

// ---- DSMCheckForKORVADSMClasses

TEST_F(SessionTest, Check_ClassExists_ZeroAndNoLine) {
    makeHealthy();
    openSession();
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), 0u);
    EXPECT_THAT(callsOf(host), ElementsAre(L"GetObject(KORVADSM_LUNINFO)"));
    EXPECT_THAT(log.lines(), ElementsAre());
    EXPECT_EQ(host->liveObjects(), kOpenSession);
}

TEST_F(SessionTest, Check_AnyFailure_OneWithItsCodeLogged) {
    makeHealthy();
    openSession();
    host.failGetObject(L"KORVADSM_LUNINFO", result(WBEM_E_PROVIDER_FAILURE));
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), 1u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"DSMCheckForKORVADSMLUNINFO()",
                                                 logged(WBEM_E_PROVIDER_FAILURE)}));
}

// ---- A second initialisation

// Kept: it does not look for an earlier session, whose pointers are overwritten and never released.
TEST_F(SessionTest, Initialize_Twice_FirstSessionStaysAlive) {
    makeHealthy();
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    EXPECT_EQ(host->liveObjects(), (simulator::LiveObjects{.locators = 2, .services = 4}));
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(host->liveObjects(), kOpenSession);
    EXPECT_THAT(log.lines(), ElementsAre(kInitialised, kInitialised));
}

TEST_F(SessionTest, Initialize_AgainWithoutLocator_LeavesTheConnections) {
    makeHealthy();
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    host->setLocatorFailure(E_OUTOFMEMORY);
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), 0u);
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(host->liveObjects(), (simulator::LiveObjects{.locators = 1}));
}

TEST_F(SessionTest, Initialize_ConnectsAsTheCallerWithoutLimit) {
    host->stop();
    const RecordingLocator locator;
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_THAT(locator.connections(),
                ElementsAre(Connection{L"root\\wmi", 0}, Connection{L"root\\cimv2", 0}));
}

// ---- The version of Windows

DWORD versionRecordSize = 0;

BOOL WINAPI isWindows52(OSVERSIONINFOW* version) {
    versionRecordSize = version->dwOSVersionInfoSize;
    version->dwMajorVersion = 5;
    version->dwMinorVersion = 2;
    return TRUE;
}

BOOL WINAPI cannotTellWindows(OSVERSIONINFOW* version) {
    isWindows52(version);
    return FALSE;
}

TEST_F(SessionTest, Initialize_VersionUnknown_NoRepair) {
    const LogLine missing{"ParseDisksInfo: IEnumWbemClassObject::Next",
                          logged(WBEM_E_INVALID_CLASS)};
    addVendorClasses();
    {
        const ImportPatch patch("GetVersionExW", &isWindows52);
        EXPECT_EQ(DSMInitialize(1), DSM_WMI_PARSING_ERROR);
        EXPECT_THAT(log.take(), ElementsAre(missing, LogLine{"Could not find InstallDir!", 55},
                                            missing, kInitialised));
        EXPECT_EQ(versionRecordSize, 276u);
    }
    const ImportPatch patch("GetVersionExW", &cannotTellWindows);
    EXPECT_EQ(DSMInitialize(1), DSM_WMI_PARSING_ERROR);
    EXPECT_THAT(log.take(), ElementsAre(missing, kInitialised));
}

TEST_F(SessionTest, Initialize_AfterAPartlyOpenSession_OpensTheRest) {
    makeHealthy();
    host.failConnect(kWmi, result(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    host->clearFaults();
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), 0u);
}

TEST_F(SessionTest, Initialize_AfterUninitialize_OpensANewSession) {
    makeHealthy();
    DSMInitialize(0);
    DSMUninitialize();
    EXPECT_EQ(DSMInitialize(0), DSM_SUCCESS);
    EXPECT_EQ(host->liveObjects(), kOpenSession);
}

// ---- DSMUninitialize

TEST_F(SessionTest, Uninitialize_ReleasesTheSessionAndLeavesNoLine) {
    makeHealthy();
    openSession();
    ConsoleCapture console;
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(console.stop(), "");
    EXPECT_EQ(host->liveObjects(), kNothing);
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(SessionTest, Uninitialize_ReleasesTheCompilerOfARepair) {
    addMpioDisks();
    DSMInitialize(0);
    EXPECT_EQ(host->liveObjects().compilers, 1u);
    DSMUninitialize();
    EXPECT_EQ(host->liveObjects(), kNothing);
}

TEST_F(SessionTest, Uninitialize_PartlyOpenSession_ReleasesWhatIsOpen) {
    makeHealthy();
    host.failConnect(kCimv2, result(WBEM_E_ACCESS_DENIED));
    DSMInitialize(0);
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(host->liveObjects(), kNothing);
}

TEST_F(SessionTest, Uninitialize_WithoutSessionAndTwice_DoesNothing) {
    EXPECT_EQ(DSMUninitialize(), 0u);
    makeHealthy();
    openSession();
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(host->liveObjects(), kNothing);
    EXPECT_FALSE(log.exists());
}

}  // namespace

// ---- Without COM

// The library does not initialise COM: on a thread without it there is no locator.
TEST(ComlessSessionTest, Initialize_26) {
    const WorkFolder folder;
    const LogFile log;
    EXPECT_EQ(DSMInitialize(0), DSM_WMI_CONNECT_FAILED);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"CoCreateInstance(WbemLocator)", 0}, kInitialised));
    EXPECT_EQ(DSMUninitialize(), 0u);
}

}  // namespace quista::test

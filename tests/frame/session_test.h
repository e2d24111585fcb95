// The fixture of tests that open and close the WMI session.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quista/frame.h"
#include "quista/status.h"
#include "tests/support/library_test.h"
#include "tests/support/local_machine.h"

namespace quista::test {

/// A WBEM code as a call's result.
constexpr HRESULT result(WBEMSTATUS code) {
    return static_cast<HRESULT>(code);
}

/// A WBEM code or another result as the log's lines carry it.
constexpr unsigned long logged(WBEMSTATUS code) {
    return static_cast<unsigned long>(code);
}
constexpr unsigned long logged(HRESULT code) {
    return static_cast<unsigned long>(code);
}

/// The line that every initialisation leaves.
inline const LogLine kInitialised{"DSM_INITIALIZED", 45};

/// A simulated host with an empty registry: there is no installation directory.
class SessionTest : public LibraryTest {
  protected:
    static constexpr simulator::LiveObjects kOpenSession{.locators = 1, .services = 2};
    static constexpr simulator::LiveObjects kNothing{};

    /// Gives the host MPIO's disk class with one instance.
    void addMpioDisks(unsigned drives = 2) {
        host.loadClasses(L"pdo");
        host.loadClasses(L"mpio");
        host.add(MofObject(L"MPIO_DISK_INFO")
                     .text(L"InstanceName", L"Root\\MPIO\\0000_0")
                     .boolean(L"Active", true)
                     .number(L"NumberDrives", drives));
    }

    void addVendorClasses() { host.loadClasses(L"korvadsm"); }

    /// A host on which every step of an initialisation succeeds.
    void makeHealthy() {
        addMpioDisks();
        addVendorClasses();
    }

    /// Makes the work folder the installation directory.
    void setInstallDir() {
        machine.setText(L"SOFTWARE\\Velmora\\MPIO", L"InstallDir", folder.path() + L"\\");
    }

    LocalMachine machine;
};

}  // namespace quista::test

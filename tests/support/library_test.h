// The fixture of tests that call the library's exports on a simulated host.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/log_file.h"
#include "tests/support/simulated_host.h"
#include "tests/support/work_folder.h"

namespace quista::test {

/// A work folder, the log in it and a simulated host. The session is opened by the test, since what
/// the host holds by then is the test's affair.
class LibraryTest : public testing::Test {
  protected:
    LibraryTest() = default;
    ~LibraryTest() override;

    /// Opens the library's session, whatever its status, and forgets the log lines and calls that
    /// this took. Gives the status.
    unsigned long openSession();
    /// Closes the session before the end of the test.
    void closeSession();

    WorkFolder folder;
    LogFile log;
    SimulatedHost host;
};

}  // namespace quista::test

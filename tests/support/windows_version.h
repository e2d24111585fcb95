// Runs tests of this program under another version of Windows. Wine only: elsewhere the version
// cannot be chosen and such tests are skipped.
#pragma once

#include <string>

#include "tests/support/program_run.h"

namespace quista::test {

/// Whether the versions can be chosen here.
bool canChooseWindowsVersion();

/// A copy of the test program under a name of its own, for which the system reports another
/// version: "win2003" 5.2, "vista" 6.0, "win7" 6.1, "win8" 6.2. Lives as long as the object.
class VersionedProgram {
  public:
    explicit VersionedProgram(const std::wstring& version);
    ~VersionedProgram();
    VersionedProgram(const VersionedProgram&) = delete;
    VersionedProgram& operator=(const VersionedProgram&) = delete;

    /// As `runTest` of the test program itself.
    ProgramRun runTest(const std::wstring& testName) const {
        return quista::test::runTest(path_, testName);
    }

  private:
    std::wstring path_;
    std::wstring settings_;  ///< registry key of the program's own settings
};

}  // namespace quista::test

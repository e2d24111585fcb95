// Runs a program and waits for it, its output going to a file.
#pragma once

#include <windows.h>

#include <string>

namespace quista::test {

struct ProgramRun {
    DWORD exitCode = 0;  ///< STILL_ACTIVE when the time ran out and the program was ended
    std::string output;  ///< standard output and standard error
};

/// Full path of the running test program.
std::wstring ownProgram();

/// Starts a program in the current directory, or in `folder`.
ProgramRun runProgram(const std::wstring& program, const std::wstring& arguments,
                      const std::wstring& folder = L"", unsigned seconds = 60);

/// Runs one test of this program, by its full name, in a process of its own. Tests that are only
/// run so have names that begin with DISABLED_.
ProgramRun runTest(const std::wstring& program, const std::wstring& testName);
inline ProgramRun runTest(const std::wstring& testName) {
    return runTest(ownProgram(), testName);
}

}  // namespace quista::test

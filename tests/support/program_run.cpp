#include "tests/support/program_run.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "tests/support/work_folder.h"

namespace quista::test {

namespace {

/// A file that the started program inherits as its output.
HANDLE createInheritedFile(const std::wstring& filePath) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileW(filePath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

DWORD waitForEnd(const PROCESS_INFORMATION& process, unsigned seconds) {
    DWORD exitCode = STILL_ACTIVE;
    if (WaitForSingleObject(process.hProcess, seconds * 1000) == WAIT_OBJECT_0) {
        GetExitCodeProcess(process.hProcess, &exitCode);
    } else {
        TerminateProcess(process.hProcess, STILL_ACTIVE);
        WaitForSingleObject(process.hProcess, INFINITE);
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return exitCode;
}

}  // namespace

std::wstring ownProgram() {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    return path;
}

ProgramRun runProgram(const std::wstring& program, const std::wstring& arguments,
                      const std::wstring& folder, unsigned seconds) {
    static unsigned runs = 0;
    const std::wstring name =
        L"quista-run-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++runs);
    const std::wstring outputPath = (std::filesystem::temp_directory_path() / name).wstring();
    const HANDLE output = createInheritedFile(outputPath);

    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = output;
    std::wstring commandLine = L"\"" + program + L"\" " + arguments;
    PROCESS_INFORMATION process{};
    ProgramRun run;
    if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                       folder.empty() ? nullptr : folder.c_str(), &startup, &process)) {
        run.exitCode = waitForEnd(process, seconds);
    } else {
        run.exitCode = static_cast<DWORD>(-1);
        ADD_FAILURE() << "a program cannot be started, error " << GetLastError();
    }
    CloseHandle(output);
    run.output = readFile(outputPath).value_or("");
    DeleteFileW(outputPath.c_str());
    return run;
}

ProgramRun runTest(const std::wstring& program, const std::wstring& testName) {
    ProgramRun run =
        runProgram(program, L"--gtest_also_run_disabled_tests --gtest_filter=" + testName);
    if (run.exitCode == 0 && run.output.find("[  PASSED  ] 1 test.") == std::string::npos) {
        ADD_FAILURE() << "there is no test of this name:\n" << run.output;
    }
    return run;
}

}  // namespace quista::test

#include "tests/cli/tool_run.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "cli/run.h"
#include "tests/cli/text_output.h"
#include "tests/support/work_folder.h"

namespace quista::test {
namespace {

std::wstring variable(const wchar_t* name) {
    std::wstring text(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

// A file beside the current folder, which itself must stay as it is. A service that the program
// starts may inherit the file and keep it for good, so no name is used twice.
std::wstring outputFile(const wchar_t* kind) {
    wchar_t folder[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, folder);
    return std::wstring(folder, length) + L"quistactl-" + std::to_wstring(GetCurrentProcessId()) +
           L"-" + std::to_wstring(GetTickCount64()) + L"-" + kind;
}

HANDLE openInherited(const std::wstring& filePath) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileW(filePath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::string take(const std::wstring& filePath) {
    std::string bytes = readFile(filePath).value_or("");
    DeleteFileW(filePath.c_str());
    return bytes;
}

int waitFor(const PROCESS_INFORMATION& process) {
    DWORD exitCode = STILL_ACTIVE;
    if (WaitForSingleObject(process.hProcess, 60000) == WAIT_OBJECT_0) {
        GetExitCodeProcess(process.hProcess, &exitCode);
    } else {
        TerminateProcess(process.hProcess, STILL_ACTIVE);
        ADD_FAILURE() << "quistactl.exe does not end";
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(exitCode);
}

}  // namespace

nlohmann::json ToolRun::json() const {
    const nlohmann::json document = nlohmann::json::parse(out, nullptr, false);
    EXPECT_FALSE(document.is_discarded()) << "not one JSON document:\n" << out;
    return document;
}

ToolRun runTool(const std::vector<std::string>& arguments, const ToolSettings& settings) {
    TextOutput out;
    TextOutput err;
    out.columns = settings.columns;
    out.hasColor = settings.takesColor;
    out.isBroken = settings.isOutputBroken;
    const cli::Process process{productFolder(), [](int exitCode) {
                                   ADD_FAILURE() << "the process ends with " << exitCode;
                               }};
    ToolRun run;
    run.exitCode = cli::run(arguments, {out, err}, process);
    run.out = out.text;
    run.err = err.text;
    return run;
}

ToolRun runProgramFile(const std::wstring& arguments, const std::wstring& programFolder) {
    const std::wstring outFile = outputFile(L"out");
    const std::wstring errFile = outputFile(L"err");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = openInherited(outFile);
    startup.hStdError = openInherited(errFile);
    const std::wstring program = programFolder + L"\\quistactl.exe";
    std::wstring commandLine = L"\"" + program + L"\" " + arguments;
    PROCESS_INFORMATION process{};
    ToolRun run;
    if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                       nullptr, &startup, &process)) {
        run.exitCode = waitFor(process);
    } else {
        ADD_FAILURE() << "quistactl.exe cannot be started, error " << GetLastError();
    }
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    run.out = take(outFile);
    run.err = take(errFile);
    return run;
}

std::wstring productFolder() {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(GetModuleHandleW(L"quista.dll"), path, MAX_PATH);
    const std::wstring file(path, length);
    return file.substr(0, file.find_last_of(L"\\/"));
}

EnvironmentVariable::EnvironmentVariable(const wchar_t* name, const std::wstring& value)
    : name_(name), previous_(variable(name)) {
    SetEnvironmentVariableW(name, value.c_str());
}

EnvironmentVariable::~EnvironmentVariable() {
    SetEnvironmentVariableW(name_, previous_.empty() ? nullptr : previous_.c_str());
}

}  // namespace quista::test

#include "cli/process.h"

#include <windows.h>

#include <iterator>

#include "cli/handle_output.h"

namespace quista::cli {
namespace {

std::wstring programFolder() {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    while (length == path.size()) {
        path.resize(path.size() * 2);
        length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    }
    path.resize(length);
    return path.substr(0, path.find_last_of(L"\\/"));
}

bool isConsole(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != FALSE;
}

// Anything but a yes is a no.
std::optional<bool> askOnConsole(const std::string& question) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    if (!isConsole(input) || !isConsole(GetStdHandle(STD_ERROR_HANDLE))) return std::nullopt;
    HandleOutput(STD_ERROR_HANDLE).write(question + " [y/N] ");
    wchar_t answer[256] = {};
    DWORD length = 0;
    if (!ReadConsoleW(input, answer, static_cast<DWORD>(std::size(answer)), &length, nullptr)) {
        return false;
    }
    return length > 0 && (answer[0] == L'y' || answer[0] == L'Y');
}

}  // namespace

Process thisProcess() {
    return {
        programFolder(),
        [](int exitCode) { TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCode)); },
        askOnConsole};
}

}  // namespace quista::cli

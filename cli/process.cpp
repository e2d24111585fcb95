#include "cli/process.h"

#include <windows.h>

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

}  // namespace

Process thisProcess() {
    return {programFolder(), [](int exitCode) {
                TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCode));
            }};
}

}  // namespace quista::cli

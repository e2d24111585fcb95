#include "cli/simulated_windows_folder.h"

#include <windows.h>

namespace quista::cli {
namespace {

constexpr const wchar_t* kVariable = L"SYSTEMROOT";

std::wstring currentValue() {
    std::wstring value(GetEnvironmentVariableW(kVariable, nullptr, 0), L'\0');
    value.resize(
        GetEnvironmentVariableW(kVariable, value.data(), static_cast<DWORD>(value.size())));
    return value;
}

}  // namespace

SimulatedWindowsFolder::SimulatedWindowsFolder(const std::wstring& folder)
    : previous_(currentValue()) {
    SetEnvironmentVariableW(kVariable, folder.c_str());
}

SimulatedWindowsFolder::~SimulatedWindowsFolder() {
    SetEnvironmentVariableW(kVariable, previous_.c_str());
}

}  // namespace quista::cli

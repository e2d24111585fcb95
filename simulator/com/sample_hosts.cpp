#include "simulator/com/sample_hosts.h"

#include <windows.h>

#include <array>

namespace quista::simulator {
namespace {

/// The folder of the module that holds this code, with its trailing backslash.
std::wstring moduleFolder() {
    HMODULE module = nullptr;
    const auto address = reinterpret_cast<LPCWSTR>(&moduleFolder);
    if (GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            address, &module) == 0) {
        return {};
    }
    std::array<wchar_t, 32768> path{};
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    const std::wstring file(path.data(), length);
    return file.substr(0, file.find_last_of(L"\\/") + 1);
}

}  // namespace

bool isBareName(const std::wstring& fileOrName) {
    return fileOrName.find_first_of(L"\\/.:") == std::wstring::npos;
}

std::wstring hostFile(const std::wstring& fileOrSample) {
    return isBareName(fileOrSample) ? moduleFolder() + L"hosts\\" + fileOrSample + L".mof"
                                    : fileOrSample;
}

std::wstring classFile(const std::wstring& fileOrName) {
    return isBareName(fileOrName) ? moduleFolder() + L"hosts\\classes\\" + fileOrName + L".mof"
                                  : fileOrName;
}

}  // namespace quista::simulator

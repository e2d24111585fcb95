#include "tests/support/local_machine.h"

#include <gtest/gtest.h>

namespace quista::test {

namespace {

constexpr const wchar_t* kScratchRoot = L"Software\\Quista Tests";

HKEY makeKeyAt(HKEY parent, const std::wstring& path) {
    HKEY key = nullptr;
    const LSTATUS status = RegCreateKeyExW(parent, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                           nullptr, &key, nullptr);
    EXPECT_EQ(status, ERROR_SUCCESS) << "a registry key of the test cannot be made";
    return key;
}

}  // namespace

LocalMachine::LocalMachine()
    : scratchPath_(std::wstring(kScratchRoot) + L"\\" + std::to_wstring(GetCurrentProcessId())) {
    RegDeleteTreeW(HKEY_CURRENT_USER, scratchPath_.c_str());
    scratch_ = makeKeyAt(HKEY_CURRENT_USER, scratchPath_);
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, scratch_), ERROR_SUCCESS);
}

LocalMachine::~LocalMachine() {
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(scratch_);
    RegDeleteTreeW(HKEY_CURRENT_USER, scratchPath_.c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, scratchPath_.c_str());
}

void LocalMachine::makeKey(const std::wstring& key) {
    RegCloseKey(makeKeyAt(scratch_, key));
}

void LocalMachine::setValue(const std::wstring& key, const std::wstring& name, DWORD type,
                            const void* data, std::size_t size) {
    const HKEY handle = makeKeyAt(scratch_, key);
    EXPECT_EQ(RegSetValueExW(handle, name.c_str(), 0, type, static_cast<const BYTE*>(data),
                             static_cast<DWORD>(size)),
              ERROR_SUCCESS);
    RegCloseKey(handle);
}

void LocalMachine::setText(const std::wstring& key, const std::wstring& name,
                           const std::wstring& text) {
    setValue(key, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void LocalMachine::setNumber(const std::wstring& key, const std::wstring& name, DWORD number) {
    setValue(key, name, REG_DWORD, &number, sizeof number);
}

void LocalMachine::eraseValue(const std::wstring& key, const std::wstring& name) {
    const HKEY handle = makeKeyAt(scratch_, key);
    RegDeleteValueW(handle, name.c_str());
    RegCloseKey(handle);
}

std::optional<std::string> LocalMachine::value(const std::wstring& key, const std::wstring& name,
                                               DWORD type) const {
    HKEY handle = nullptr;
    if (RegOpenKeyExW(scratch_, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) return {};
    DWORD found = 0;
    DWORD size = 0;
    std::optional<std::string> result;
    if (RegQueryValueExW(handle, name.c_str(), nullptr, &found, nullptr, &size) == ERROR_SUCCESS &&
        found == type) {
        std::string bytes(size, '\0');
        RegQueryValueExW(handle, name.c_str(), nullptr, nullptr,
                         reinterpret_cast<BYTE*>(bytes.data()), &size);
        bytes.resize(size);
        result = bytes;
    }
    RegCloseKey(handle);
    return result;
}

}  // namespace quista::test

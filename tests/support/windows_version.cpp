#include "tests/support/windows_version.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace quista::test {

namespace {

constexpr const wchar_t* kProgramSettings = L"Software\\Wine\\AppDefaults\\";

}  // namespace

bool canChooseWindowsVersion() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

VersionedProgram::VersionedProgram(const std::wstring& version) {
    // The settings go by the file name, so it is unique among programs that run at once.
    const std::filesystem::path original = ownProgram();
    const std::wstring name = original.stem().wstring() + L"-" + version + L"-" +
                              std::to_wstring(GetCurrentProcessId()) + L".exe";
    path_ = (original.parent_path() / name).wstring();
    settings_ = kProgramSettings + name;
    EXPECT_TRUE(CopyFileW(original.c_str(), path_.c_str(), FALSE));
    EXPECT_EQ(
        RegSetKeyValueW(HKEY_CURRENT_USER, settings_.c_str(), L"Version", REG_SZ, version.c_str(),
                        static_cast<DWORD>((version.size() + 1) * sizeof(wchar_t))),
        ERROR_SUCCESS);
}

VersionedProgram::~VersionedProgram() {
    RegDeleteKeyW(HKEY_CURRENT_USER, settings_.c_str());
    DeleteFileW(path_.c_str());
}

}  // namespace quista::test

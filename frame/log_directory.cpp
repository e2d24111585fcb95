#include "frame/log_directory.h"

#include <windows.h>

#include <winver.h>

#include <array>
#include <cwchar>
#include <vector>

#include "frame/brand.h"
#include "frame/console.h"

namespace quista {

namespace {

// Found by its bare name through the system's search: a build whose file has another name logs to
// the working directory.
constexpr const wchar_t* kLibraryFile = L"quista.dll";

constexpr std::size_t kLogDirectoryCharacters = 200;

std::vector<BYTE> versionResource() {
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeW(kLibraryFile, &unused);
    if (size == 0) return {};
    std::vector<BYTE> block(size);
    if (!GetFileVersionInfoW(kLibraryFile, 0, size, block.data())) return {};
    return block;
}

struct Translation {
    WORD language;
    WORD codePage;
};

std::wstring companyName(const std::vector<BYTE>& version) {
    void* value = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(version.data(), L"\\VarFileInfo\\Translation", &value, &length) ||
        length < sizeof(Translation)) {
        return {};
    }
    const auto* translation = static_cast<const Translation*>(value);
    const std::wstring query = formatText(L"\\StringFileInfo\\%04x%04x\\CompanyName",
                                          translation->language, translation->codePage);
    if (!VerQueryValueW(version.data(), query.c_str(), &value, &length) || value == nullptr) {
        return {};
    }
    const auto* text = static_cast<const wchar_t*>(value);
    return std::wstring(text, wcsnlen(text, length));
}

const wchar_t* registryKeyFor(const std::wstring& company) {
    if (company.starts_with(L"Velmora")) return kVelmoraKey;
    if (company.starts_with(L"Pelmark")) return kPelmarkKey;
    return nullptr;
}

std::optional<std::wstring> readLogDirectory(HKEY key) {
    // One character more than the registry may fill, so that a value stored without a terminator
    // still ends.
    std::array<wchar_t, kLogDirectoryCharacters + 1> text{};
    DWORD size = kLogDirectoryCharacters * sizeof(wchar_t);
    const LSTATUS result = RegQueryValueExW(key, L"LogDir", nullptr, nullptr,
                                            reinterpret_cast<BYTE*>(text.data()), &size);
    if (result != ERROR_SUCCESS) return std::nullopt;
    return std::wstring(text.data());
}

}  // namespace

std::optional<std::wstring> configuredLogDirectory() {
    const std::vector<BYTE> version = versionResource();
    if (version.empty()) return std::nullopt;

    const wchar_t* path = registryKeyFor(companyName(version));
    HKEY key = nullptr;
    if (path == nullptr ||
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    // Kept: the key stays open.
    return readLogDirectory(key);
}

}  // namespace quista

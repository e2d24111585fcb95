// Versions and dates of the calling program and the driver files.
#include <windows.h>

#include <winver.h>

#include <array>
#include <cstdio>
#include <iterator>
#include <memory>
#include <new>
#include <string>

#include "frame/console.h"
#include "frame/guard.h"
#include "quista/mpio.h"

namespace quista {

namespace {

constexpr DWORD kProgramNameCharacters = 128;
constexpr DWORD kSystemRootCharacters = 65;

struct FileVersion {
    VS_FIXEDFILEINFO info{};
    FILETIME lastWrite{};
};

bool readVersionResource(const std::wstring& filePath, VS_FIXEDFILEINFO& info) {
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeW(filePath.c_str(), &unused);
    if (size == 0) return false;
    // The file says how large its resource is. When that is too much for the memory, its version is
    // unreadable like any other, and the files after it are still read.
    const std::unique_ptr<BYTE[]> block(new (std::nothrow)
                                            BYTE[static_cast<std::size_t>(size) * 2]);
    if (block == nullptr) return false;
    if (!GetFileVersionInfoW(filePath.c_str(), 0, size, block.get())) return false;
    void* root = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block.get(), L"\\", &root, &length) || length < sizeof(info)) return false;
    info = *static_cast<const VS_FIXEDFILEINFO*>(root);
    return true;
}

bool readLastWriteTime(const std::wstring& filePath, FILETIME& lastWrite) {
    const HANDLE file =
        CreateFileW(filePath.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    const bool known = GetFileTime(file, nullptr, nullptr, &lastWrite) != 0;
    CloseHandle(file);
    return known;
}

bool readFileVersion(const std::wstring& filePath, FileVersion& version) {
    return readVersionResource(filePath, version.info) &&
           readLastWriteTime(filePath, version.lastWrite);
}

/// Prints a time in local time. A time that cannot be converted leaves the text alone.
void formatDate(const FILETIME& time, char (&date)[128]) {
    FILETIME local;
    SYSTEMTIME calendar;
    if (!FileTimeToLocalFileTime(&time, &local) || !FileTimeToSystemTime(&local, &calendar)) return;
    std::snprintf(date, std::size(date), "%02d/%02d/%02d %02d:%02d:%02d", calendar.wMonth,
                  calendar.wDay, calendar.wYear, calendar.wHour, calendar.wMinute,
                  calendar.wSecond);
}

/// Fills an entry when the file's version can be read.
bool fillEntry(const std::wstring& filePath, _DRIVER_VERSION_ENTRY& entry) {
    FileVersion version;
    if (!readFileVersion(filePath, version)) return false;
    entry.Major = HIWORD(version.info.dwFileVersionMS);
    entry.Minor = LOWORD(version.info.dwFileVersionMS);
    entry.Build = HIWORD(version.info.dwFileVersionLS);
    entry.Revision = LOWORD(version.info.dwFileVersionLS);
    formatDate(version.lastWrite, entry.Date);
    return true;
}

DWORD readVersions(_DRIVER_VERSION& version) {
    std::array<wchar_t, kProgramNameCharacters> program{};
    if (GetModuleFileNameW(nullptr, program.data(), kProgramNameCharacters) == 0) {
        return DSM_INVALID_DSM_VERSION;
    }
    program.back() = L'\0';
    fillEntry(program.data(), version.Program);

    std::array<wchar_t, kSystemRootCharacters> root{};
    const DWORD length = GetEnvironmentVariableW(L"SYSTEMROOT", root.data(), kSystemRootCharacters);
    if (length == 0 || length >= kSystemRootCharacters) return DSM_ERROR;

    const std::wstring drivers = std::wstring(root.data()) + L"\\system32\\drivers\\";
    fillEntry(drivers + L"mpio.sys", version.Mpio);
    fillEntry(drivers + L"korvadsm.sys", version.KorvaDsm);
    if (!fillEntry(drivers + L"msiscdsm.sys", version.MicrosoftDsm)) {
        fillEntry(drivers + L"msdsm.sys", version.MicrosoftDsm);
    }
    return DSM_SUCCESS;
}

}  // namespace

}  // namespace quista

unsigned long DSMGetVersion(_DRIVER_VERSION* version) {
    using namespace quista;
    return guarded(DSM_INVALID_DSM_VERSION, [&]() -> DWORD {
        if (version == nullptr) {
            traceLine(L"ERROR: Version is NULL\n");
            return DSM_INVALID_DSM_VERSION;
        }
        return readVersions(*version);
    });
}

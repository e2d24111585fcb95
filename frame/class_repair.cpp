// Recompiles the MOF files of the installation when WMI has lost the product's classes.
#include <windows.h>

#include <wbemcli.h>

#include <array>
#include <initializer_list>
#include <string>

#include "frame/brand.h"
#include "frame/guard.h"
#include "frame/session.h"
#include "quista/frame.h"

namespace quista {

namespace {

constexpr unsigned char kVendorClasses = 1;

// Kept: the buffer holds 260 characters, and its size is given as 260 bytes, so a directory of up
// to 129 characters fits.
constexpr std::size_t kInstallDirCharacters = 260;
constexpr DWORD kInstallDirBytes = 260;

/// Reads InstallDir, which ends with a path separator, from an open brand key.
bool readInstallDir(HKEY key, std::wstring& directory) {
    std::array<wchar_t, kInstallDirCharacters> text{};
    DWORD size = kInstallDirBytes;
    if (RegQueryValueExW(key, L"InstallDir", nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()),
                         &size) != ERROR_SUCCESS) {
        return false;
    }
    directory = text.data();
    return true;
}

/// Opens the first brand key that has an InstallDir; null when none has.
HKEY openInstallationKey() {
    for (const wchar_t* path : {kVelmoraKey, kPelmarkKey}) {
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) {
            continue;
        }
        std::wstring directory;
        if (readInstallDir(key, directory)) return key;
        RegCloseKey(key);
    }
    return nullptr;
}

HRESULT createCompiler() {
    // Kept: an earlier compiler is overwritten, not released.
    const HRESULT result =
        CoCreateInstance(CLSID_MofCompiler, nullptr, CLSCTX_INPROC_SERVER, IID_IMofCompiler,
                         reinterpret_cast<void**>(&gMofCompiler));
    return result == S_OK && gMofCompiler == nullptr ? E_POINTER : result;
}

HRESULT compile(std::wstring file) {
    wchar_t nameSpace[] = L"root\\wmi";
    return gMofCompiler->CompileFile(file.data(), nameSpace, nullptr, nullptr, nullptr,
                                     WBEM_FLAG_CONSOLE_PRINT, 0, 0, nullptr);
}

/// Compiles the files in order; the results are OR-ed, so a mere warning counts as a failure.
DWORD compileAll(const std::wstring& directory, std::initializer_list<const wchar_t*> files) {
    DWORD result = 0;
    for (const wchar_t* file : files) result |= static_cast<DWORD>(compile(directory + file));
    return result;
}

DWORD compileSet(HKEY key, unsigned char which) {
    std::wstring directory;
    if (!readInstallDir(key, directory)) return 0;
    if (which == kVendorClasses) return compileAll(directory, {L"korvadsm.mof"});
    return compileAll(directory, {L"pdo.mof", L"lbpolicy.mof", L"mpio.mof"});
}

}  // namespace

}  // namespace quista

unsigned long DSMRepairWMI(unsigned char which) {
    using namespace quista;
    return guarded(static_cast<DWORD>(E_UNEXPECTED), [&]() -> DWORD {
        const HRESULT created = createCompiler();
        if (created != S_OK) {
            ReportError(L"Could not create MofCompiler!", DSM_WMI_REPAIR_FAIL);
            return static_cast<DWORD>(created);
        }
        // Kept: the key stays open.
        const HKEY key = openInstallationKey();
        if (key == nullptr) {
            ReportError(L"Could not find InstallDir!", DSM_WMI_REPAIR_FAIL);
            // Kept: a missing directory is reported as success.
            return 0;
        }
        const DWORD result = compileSet(key, which);
        if (result != 0) {
            ReportError(L"MPIO and/or KORVADSM WMI classes missing!!", result);
        } else {
            ReportError(L"DSM recompiling MOFs!!", DSM_WMI_REPAIR_SUCCESS);
        }
        return result;
    });
}

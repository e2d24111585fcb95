// Whether a path is the last available one of its LUN.
#include <windows.h>

#include <wbemcli.h>

#include <cstdint>

#include "frame/error_log.h"
#include "frame/guard.h"
#include "luns/path_identifier.h"
#include "quista/frame.h"
#include "quista/luns.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

// Kept: the properties of a path report under the place of the LUN's path count.
constexpr const wchar_t* kPathPlace = L"IsLastPath: NumberOfPaths";

bool readIdentifier(IWbemClassObject* path, std::uint64_t& identifier) {
    UniqueVariant value;
    if (getOrLog(path, L"DsmId", value, kPathPlace) != S_OK) return false;
    identifier = pathIdentifierOf(value.rawLong());
    return true;
}

/// Looks for the path among a LUN's paths; DSM_PATH_NOT_FOUND when it is not there.
DWORD findPath(const ObjectTable& paths, std::uint64_t pathId) {
    for (LONG i = 0; i < paths.count(); ++i) {
        std::uint64_t identifier = 0;
        if (!readIdentifier(paths.at(i), identifier)) return DSM_WMI_FAILURE;
        if (identifier == pathId) return DSM_SUCCESS;
    }
    return DSM_PATH_NOT_FOUND;
}

/// Looks for another path that is available, that is in state 1 or 2.
DWORD findOtherAvailablePath(const ObjectTable& paths, std::uint64_t pathId, int& isLast) {
    for (LONG i = 0; i < paths.count(); ++i) {
        std::uint64_t identifier = 0;
        if (!readIdentifier(paths.at(i), identifier)) return DSM_WMI_FAILURE;
        if (identifier == pathId) continue;
        UniqueVariant state;
        if (getOrLog(paths.at(i), L"PathState", state, kPathPlace) != S_OK) return DSM_WMI_FAILURE;
        if (state.rawByte() == 1 || state.rawByte() == 2) {
            isLast = 0;
            break;
        }
    }
    return DSM_SUCCESS;
}

/// Examines one LUN; DSM_PATH_NOT_FOUND when the path belongs to another.
DWORD examineLun(IWbemClassObject* lun, std::uint64_t pathId, int& isLast) {
    UniqueVariant count;
    if (getOrLog(lun, L"NumberOfPaths", count, L"IsLastPath: NumberOfPaths") != S_OK) {
        return DSM_WMI_FAILURE;
    }
    UniqueVariant value;
    if (getOrLog(lun, L"Paths", value, L"IsLastPath: Paths") != S_OK) return DSM_WMI_FAILURE;
    ObjectTable paths(roomFor(value.get(), count.rawLong()));
    if (!paths.valid()) return DSM_NO_MEMORY;
    paths.fill(value.get());
    isLast = 1;

    const DWORD status = findPath(paths, pathId);
    return status == DSM_SUCCESS ? findOtherAvailablePath(paths, pathId, isLast) : status;
}

DWORD searchLuns(std::uint64_t pathId, int& isLast) {
    ComRef<IEnumWbemClassObject> luns;
    if (enumerateClass(L"KORVADSM_LUNINFO", luns) != S_OK) return DSM_ERROR;
    ComRef<IWbemClassObject> lun;
    while (nextInstance(luns.get(), lun) == S_OK) {
        const DWORD status = examineLun(lun.get(), pathId, isLast);
        if (status != DSM_PATH_NOT_FOUND) return status;
    }
    isLast = 0;
    return DSM_PATH_NOT_FOUND;
}

}  // namespace

}  // namespace quista

unsigned long IsLastAvlblPath(unsigned long long pathId, int* isLast) {
    using namespace quista;
    return guarded(DSM_ERROR, [&] { return searchLuns(pathId, *isLast); });
}

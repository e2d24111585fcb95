// One LUN by its serial number: its record, and the number of its paths.
#include <windows.h>

#include <objbase.h>

#include <string>

#include "frame/console.h"
#include "frame/error_log.h"
#include "frame/guard.h"
#include "luns/lun_query.h"
#include "quista/luns.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/results.h"

namespace quista {

namespace {

/// The status of the lookup when the enumeration ends without a match.
DWORD statusWithoutMatch(HRESULT next) {
    return next == kTimedOut ? DSM_LUN_INFO_FAILED : DSM_SERIAL_NOT_FOUND;
}

DWORD findDiskInfo(const std::wstring& serial, _KORVADSM_DISKINFO** out) {
    ComRef<IEnumWbemClassObject> luns;
    if (queryLunsBySerial(serial, luns) != S_OK) return DSM_SERIAL_NOT_FOUND;
    for (;;) {
        ComRef<IWbemClassObject> lun;
        const HRESULT next =
            nextOrLog(luns.get(), lun, L"CallGetDiskInfoKORVA: IEnumWbemClassObject::Next");
        if (next != S_OK) return statusWithoutMatch(next);
        if (ParseDiskInfoKORVA(lun.get(), out) != DSM_SUCCESS) return DSM_ERROR;
        if (serialNumberOf(**out) == serial) return DSM_SUCCESS;
        CoTaskMemFree(*out);
        *out = nullptr;
    }
}

DWORD countPaths(const std::wstring& serial, int& numberOfPaths) {
    ComRef<IEnumWbemClassObject> luns;
    if (queryLunsBySerial(serial, luns) != S_OK) return DSM_ERROR;
    for (;;) {
        ComRef<IWbemClassObject> lun;
        const HRESULT next =
            nextOrLog(luns.get(), lun, L"DSMGetNoPaths: IEnumWbemClassObject::Next");
        if (next != S_OK) return next == kNotFound ? DSM_WMI_NOT_SUPPORTED : DSM_ERROR;

        UniqueVariant number;
        if (getOrLog(lun.get(), L"SerialNumber", number, L"ParseLunInfo::Get(SerialNumber)") !=
            S_OK) {
            return DSM_ERROR;
        }
        UniqueVariant paths;
        if (getProperty(lun.get(), L"NumberOfPaths", paths) != S_OK) return DSM_ERROR;
        // Stored before the serial numbers are compared: a LUN that does not match leaves its
        // count.
        numberOfPaths = static_cast<int>(paths.rawLong());
        if (stringOf(number.get()) == serial) return DSM_SUCCESS;
    }
}

}  // namespace

}  // namespace quista

unsigned long CallGetDiskInfoKORVA(wchar_t* serial, _KORVADSM_DISKINFO** out) {
    using namespace quista;
    return guarded(DSM_SERIAL_NOT_FOUND, [&] { return findDiskInfo(serialText(serial), out); });
}

unsigned long DSMGetDiskInfoKORVA(wchar_t* serial, _KORVADSM_DISKINFO** out) {
    using namespace quista;
    return guarded(DSM_SERIAL_NOT_FOUND, [&]() -> DWORD {
        _KORVADSM_DISKINFO* info = nullptr;
        const DWORD status = CallGetDiskInfoKORVA(serial, &info);
        if (status == DSM_SUCCESS) {
            *out = info;
            return status;
        }
        traceLine(L"ERROR: Failed CallGetDiskInfo() for S/N: \"" + serialText(serial) + L"\"\n");
        CoTaskMemFree(info);
        *out = nullptr;
        OutputDebugStringW(L"DSMGetDiskInfoKORVA: Failed CallGetDiskInfo().\n");
        return status;
    });
}

unsigned long DSMGetNoPaths(wchar_t* serial, int* numberOfPaths) {
    using namespace quista;
    return guarded(DSM_ERROR, [&] { return countPaths(serialText(serial), *numberOfPaths); });
}

// All LUNs: as records, and as live WMI objects.
#include <windows.h>

#include <wbemcli.h>

#include <cstring>
#include <list>
#include <map>
#include <string>

#include "frame/error_log.h"
#include "frame/guard.h"
#include "luns/lun_parser.h"
#include "luns/lun_query.h"
#include "quista/luns.h"
#include "wmi/query.h"

namespace quista {

namespace {

// The serial numbers of the last full enumeration, to drop repeated ones. It lives until the
// library is unloaded; the mapped value is never read.
std::map<std::wstring, int> gSerialNumbers;

constexpr int kPresent = 2;
constexpr const wchar_t* kPlaceholderSerial = L"Invalid Entry";

static_assert(sizeof(_KORVADSM_LUN) == offsetof(_KORVADSM_DISKINFO, InstanceName),
              "a LUN entry is the leading part of the disk record");

/// Placeholder entries are all kept; of any other serial number only the first.
bool isWanted(const std::wstring& serial) {
    return serial == kPlaceholderSerial || !gSerialNumbers.contains(serial);
}

DWORD ParseDisksInfoKORVA(_KORVADSM_DISKS* disks) {
    gSerialNumbers.clear();
    ComRef<IEnumWbemClassObject> luns;
    if (logFailure(queryAllLuns(luns), L"CreateInstanceEnum(KORVADSM_DISKS)") != S_OK) {
        disks->NumberDisks = 0;
        return DSM_WMI_FAILURE;
    }

    DWORD status = DSM_WMI_PARSING_ERROR;
    unsigned long count = 0;
    ComRef<IWbemClassObject> lun;
    HRESULT next;
    while ((next = nextOrLog(luns.get(), lun,
                             L"ParseDisksInfoKORVA: IEnumWbemClassObject::Next")) == S_OK) {
        _KORVADSM_DISKINFO* info = nullptr;
        LONG room = 0;
        // Kept: the parser's block is not freed.
        const DWORD parsed = ParseLunInfoKORVA(lun.get(), &info, &room);
        if (parsed != DSM_SUCCESS) return parsed;

        const std::wstring serial = serialNumberOf(*info);
        if (!isWanted(serial)) continue;
        std::memcpy(&disks->Disks[count], info, sizeof(_KORVADSM_LUN));
        gSerialNumbers[serial] = kPresent;
        ++count;
        status = DSM_SUCCESS;
    }
    disks->NumberDisks = count;
    return statusAfterLastLun(next, status);
}

DWORD appendAllLuns(std::list<IWbemClassObject*>& list, long& count) {
    count = 0;
    ComRef<IEnumWbemClassObject> luns;
    if (logFailure(queryAllLuns(luns),
                   L"KORVADSMGetAllDiskInfoEx : ExecQuery(SELECT * FROM KORVADSM_LUNINFO)") !=
        S_OK) {
        return DSM_WMI_FAILURE;
    }
    ComRef<IWbemClassObject> lun;
    HRESULT next;
    while ((next = nextOrLog(luns.get(), lun,
                             L"KORVADSMGetAllDiskInfoEx: IEnumWbemClassObject::Next")) == S_OK) {
        list.push_back(lun.get());
        lun->AddRef();
        ++count;
    }
    // A list that holds just what was counted is a success, however the enumeration ended.
    if (static_cast<std::size_t>(count) == list.size()) return DSM_SUCCESS;
    return statusAfterLastLun(next, DSM_SUCCESS);
}

}  // namespace

}  // namespace quista

unsigned long KORVADSMGetAllLunsEx(_KORVADSM_DISKS* disks) {
    using namespace quista;
    return guarded(DSM_WMI_PARSING_ERROR, [&]() -> DWORD {
        const DWORD status = ParseDisksInfoKORVA(disks);
        if (status != DSM_SUCCESS) {
            OutputDebugStringW(L"KORVADSMGetAllLuns: failed to get disks info from WMI/DSM.\n");
        }
        return status;
    });
}

unsigned long KORVADSMGetAllDiskInfoEx(std::list<IWbemClassObject*>& luns, long& count) {
    using namespace quista;
    return guarded(DSM_WMI_FAILURE, [&] { return appendAllLuns(luns, count); });
}

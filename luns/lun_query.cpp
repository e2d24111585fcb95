#include "luns/lun_query.h"

#include <cwchar>
#include <iterator>

#include "quista/status.h"
#include "wmi/query.h"
#include "wmi/results.h"

namespace quista {

std::wstring serialText(const wchar_t* serial) {
    return serial != nullptr ? serial : L"";
}

HRESULT queryAllLuns(ComRef<IEnumWbemClassObject>& luns) {
    return DsmExecQuery(luns.receive(), kAllLunsQuery);
}

HRESULT queryLunsBySerial(const std::wstring& serial, ComRef<IEnumWbemClassObject>& luns) {
    return DsmExecQuery(luns.receive(),
                        std::wstring(kAllLunsQuery) + L" WHERE SerialNumber = \"" + serial + L"\"");
}

std::wstring serialNumberOf(const _KORVADSM_DISKINFO& info) {
    return std::wstring(info.SerialNumber,
                        wcsnlen(info.SerialNumber, std::size(info.SerialNumber)));
}

DWORD statusAfterLastLun(HRESULT next, DWORD reached) {
    switch (next) {
        case kNotFound:
            return DSM_WMI_NOT_SUPPORTED;
        case kTimedOut:
            return DSM_LUN_INFO_FAILED;
        default:
            return reached;
    }
}

}  // namespace quista

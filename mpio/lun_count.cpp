// The number of MPIO disks.
#include <windows.h>

#include "frame/error_log.h"
#include "frame/guard.h"
#include "quista/mpio.h"
#include "wmi/property.h"
#include "wmi/query.h"

namespace quista {

namespace {

// Kept: the messages of the disk list's parser stand for the count's too.
DWORD readCount(unsigned long& count) {
    ComRef<IEnumWbemClassObject> instances;
    if (logFailure(enumerateClass(L"MPIO_DISK_INFO", instances),
                   L"DSMGetNumberMpioLUNs:CreateInstanceEnum(DSM_DISKS)") != S_OK) {
        OutputDebugStringW(L"ParseDisksInfo: CreateInstanceEnum(DSM_DISKS).\n");
        return DSM_WMI_FAILURE;
    }
    ComRef<IWbemClassObject> instance;
    while (nextOrLog(instances.get(), instance, L"ParseDisksInfo: IEnumWbemClassObject::Next") ==
           S_OK) {
        UniqueVariant value;
        if (getOrLog(instance.get(), L"NumberDrives", value,
                     L"DSMGetNumberMpioLUNs::Get(NumberDisks)") == S_OK) {
            count = value.rawLong();
            return DSM_SUCCESS;
        }
        OutputDebugStringW(L"ParseDisksInfo: can't get NumberDisks.\n");
    }
    return DSM_WMI_PARSING_ERROR;
}

}  // namespace

}  // namespace quista

unsigned long DSMGetNumberMpioLUNs(unsigned long* count) {
    using namespace quista;
    return guarded(DSM_WMI_PARSING_ERROR, [&] { return readCount(*count); });
}

// The list of MPIO disks.
#include <windows.h>

#include "frame/console.h"
#include "frame/error_log.h"
#include "frame/guard.h"
#include "frame/session.h"
#include "mpio/drive_parser.h"
#include "mpio/object_or_array.h"
#include "quista/frame.h"
#include "quista/mpio.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

DWORD parseDriveArray(const VARIANT& drives, _DSM_DISKS& disks, DWORD& entryCount) {
    // As many drives as the session counted; what goes beyond is not fetched.
    ObjectTable objects(roomFor(drives, gMpioLunCount));
    DWORD status = DSM_WMI_PARSING_ERROR;
    for (LONG i = 0, count = objects.fill(drives); i < count; ++i) {
        status = ParseLunInfo(objects.at(i), &disks.DriveInfo[i]);
        objects.release(i);
        if (status != DSM_SUCCESS) break;
        ++entryCount;
    }
    return status;
}

DWORD parseSingleDrive(IWbemClassObject* drive, _DSM_DISKS& disks, DWORD& entryCount) {
    traceLine(L"WARNING: LunInfo is not an array!\n");
    const DWORD status = ParseLunInfo(drive, &disks.DriveInfo[0]);
    if (status == DSM_SUCCESS) entryCount = 1;
    return status;
}

DWORD parseDrives(const ObjectOrArray& drives, _DSM_DISKS& disks, DWORD& entryCount) {
    switch (drives.value.type()) {
        case VT_UNKNOWN:
            return parseSingleDrive(drives.single.get(), disks, entryCount);
        case VT_ARRAY | VT_UNKNOWN:
            return parseDriveArray(drives.value.get(), disks, entryCount);
        default:
            return DSM_WMI_PARSING_ERROR;
    }
}

DWORD ParseDisksInfo(_DSM_DISKS* disks, DWORD* entryCount) {
    ComRef<IEnumWbemClassObject> instances;
    if (logFailure(enumerateClass(L"MPIO_DISK_INFO", instances),
                   L"ParseDisksInfo:CreateInstanceEnum(DSM_DISKS)") != S_OK) {
        OutputDebugStringW(L"ParseDisksInfo::CreateInstanceEnum(DSM_DISKS).\n");
        return DSM_WMI_FAILURE;
    }
    ComRef<IWbemClassObject> instance;
    while (nextOrLog(instances.get(), instance, L"ParseDisksInfo: IEnumWbemClassObject::Next") ==
           S_OK) {
        UniqueVariant count;
        if (getOrLog(instance.get(), L"NumberDrives", count, L"ParseDisksInfo::Get(NumberDisks)") !=
            S_OK) {
            OutputDebugStringW(L"ParseDisksInfo: can't get NumberDisks.\n");
            continue;
        }
        disks->NumberDrives = count.rawLong();

        ObjectOrArray drives;
        if (logFailure(drives.read(instance.get(), L"DriveInfo"),
                       L"ParseDisksInfo::Get(LunInfo)") != S_OK) {
            OutputDebugStringW(L"ParseDisksInfo: IWbemClassObject::Get(LunInfo).\n");
            // Kept: such an instance is not released.
            instance.keepOnPurpose();
            continue;
        }
        // Only the first instance that gives both properties counts.
        return parseDrives(drives, *disks, *entryCount);
    }
    return DSM_WMI_PARSING_ERROR;
}

}  // namespace

}  // namespace quista

unsigned long DSMGetAllLunsEx(_DSM_DISKS* disks) {
    using namespace quista;
    return guarded(DSM_WMI_PARSING_ERROR, [&]() -> DWORD {
        DWORD entryCount = 0;
        const DWORD status = ParseDisksInfo(disks, &entryCount);
        if (status != DSM_SUCCESS) {
            OutputDebugStringW(L"DSMGetAllLuns: failed to get disks info from WMI/DSM.\n");
            // Kept: the line carries this code whatever the status is.
            ReportError(L"DSMGetAllLuns", DSM_WMI_PARSING_ERROR);
        }
        return status;
    });
}

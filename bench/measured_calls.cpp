#include "bench/measured_calls.h"

#include <windows.h>

#include <objbase.h>
#include <wbemcli.h>

#include <cstddef>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "quista/quista.h"

namespace quista::bench {

namespace {

bool countMpioLuns(const BenchHost&) {
    unsigned long count = 0;
    return DSMGetNumberMpioLUNs(&count) == DSM_SUCCESS;
}

bool listMpioDisks(const BenchHost& host) {
    std::vector<std::byte> block(sizeof(_DSM_DISKS) + host.size().luns * sizeof(_DSM_DRIVEINFO));
    return DSMGetAllLunsEx(reinterpret_cast<_DSM_DISKS*>(block.data())) == DSM_SUCCESS;
}

bool listDescriptors(const BenchHost& host) {
    std::vector<std::byte> block(sizeof(_MPIO_DESCRIPTOR_LIST) +
                                 host.size().luns * sizeof(_MPIO_GET_DESCRIPTOR*));
    auto* list = reinterpret_cast<_MPIO_DESCRIPTOR_LIST*>(block.data());
    if (DSMGetMpioDescr(list) != DSM_SUCCESS) return false;
    _MPIO_GET_DESCRIPTOR** descriptors = list->Descriptor;
    for (unsigned long i = 0; i < list->NumberDescriptors; ++i) CoTaskMemFree(descriptors[i]);
    return true;
}

bool inventory(const BenchHost&) {
    std::list<IWbemClassObject*> luns;
    long count = 0;
    bool parsed = KORVADSMGetAllDiskInfoEx(luns, count) == DSM_SUCCESS;
    for (IWbemClassObject* lun : luns) {
        _KORVADSM_DISKINFO* info = nullptr;
        parsed = ParseDiskInfoKORVA(lun, &info) == DSM_SUCCESS && parsed;
        CoTaskMemFree(info);
        lun->Release();
    }
    return parsed;
}

bool findLun(const BenchHost& host) {
    std::wstring serial = host.lastSerial();
    _KORVADSM_DISKINFO* info = nullptr;
    const bool found = DSMGetDiskInfoKORVA(serial.data(), &info) == DSM_SUCCESS;
    CoTaskMemFree(info);
    return found;
}

bool askLastPath(const BenchHost& host) {
    int isLast = 0;
    return IsLastAvlblPath(host.lastPath(), &isLast) == DSM_SUCCESS;
}

bool refreshPath(const BenchHost& host) {
    return KORVADSMUpdateTPG(static_cast<unsigned long>(host.lastPath())) == DSM_SUCCESS;
}

bool mapDisks(const BenchHost&) {
    std::map<std::wstring, _WMIDISKDRIVEDATA*> drives;
    long count = 0;
    const bool read = KORVADSMGetAllWin32_DiskDrive(&drives, count) == DSM_SUCCESS;
    for (const auto& drive : drives) CoTaskMemFree(drive.second);
    return read;
}

}  // namespace

const std::vector<MeasuredCall>& measuredCalls() {
    static const std::vector<MeasuredCall> calls = {
        {"count MPIO LUNs", countMpioLuns},
        {"list MPIO disks", listMpioDisks},
        {"list descriptors", listDescriptors},
        {"inventory with paths", inventory},
        {"find last LUN", findLun},
        {"last path available?", askLastPath},
        {"refresh last path", refreshPath},
        {"map Windows disks", mapDisks},
    };
    return calls;
}

}  // namespace quista::bench

// Lists the LUNs of this host with their available paths: a whole client of quista.dll.
#include <windows.h>

#include <objbase.h>
#include <wbemcli.h>

#include <cstdio>
#include <list>

#include "quista/quista.h"

namespace {

bool isAvailable(const _KORVADSM_PATHINFO& path) {
    return path.PathState == 1 || path.PathState == 2;
}

void print(const _KORVADSM_DISKINFO& lun) {
    unsigned long available = 0;
    for (unsigned long i = 0; i < lun.NumberPaths; ++i) available += isAvailable(lun.Paths[i]);
    std::printf("%.65ls  %llu bytes  %lu of %lu paths\n", lun.SerialNumber, lun.LunSize, available,
                lun.NumberPaths);
}

unsigned long listLuns() {
    std::list<IWbemClassObject*> luns;
    long count = 0;
    const unsigned long status = KORVADSMGetAllDiskInfoEx(luns, count);
    for (IWbemClassObject* lun : luns) {
        _KORVADSM_DISKINFO* info = nullptr;
        if (ParseDiskInfoKORVA(lun, &info) == DSM_SUCCESS) print(*info);
        CoTaskMemFree(info);
        lun->Release();
    }
    return status;
}

}  // namespace

int main() {
    // COM and the security of the process are the caller's to set up.
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) return 1;
    CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                         RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    unsigned long status = DSMInitialize(0);
    if (status == DSM_SUCCESS) status = listLuns();
    if (status != DSM_SUCCESS) std::fprintf(stderr, "%s (%lu)\n", ConvertError(status), status);
    DSMUninitialize();
    CoUninitialize();
    return status == DSM_SUCCESS ? 0 : 1;
}

// The export that names the Fibre Channel adapter of a path.
#include <windows.h>

#include "adapters/fc_adapter_search.h"
#include "frame/guard.h"
#include "quista/adapters.h"

unsigned long GetFcAdapterInfoEx(unsigned long portNumber, unsigned long busNumber,
                                 unsigned long targetNumber, char* hbaAddress, int hbaAddressLength,
                                 char* hbaName, int hbaNameLength) {
    using namespace quista;
    AdapterText address;
    AdapterText name;
    DWORD status = hba::kError;
    guardedVoid([&] {
        status = GetFCPAdapterInfo({portNumber, busNumber, targetNumber}, address, name);
    });
    address.copyTo(hbaAddress, hbaAddressLength);
    name.copyTo(hbaName, hbaNameLength);
    return status;
}

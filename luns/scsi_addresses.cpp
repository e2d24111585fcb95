// The SCSI addresses of a LUN's paths.
#include <windows.h>

#include <cstddef>

#include "frame/guard.h"
#include "frame/task_memory.h"
#include "luns/instance_lookup.h"
#include "quista/frame.h"
#include "quista/luns.h"

namespace quista {

namespace {

PDO_SCSI_ADDRESS* copyAddresses(const _MPIO_GET_DESCRIPTOR& descriptor) {
    const std::size_t count = descriptor.NumberPdos;
    auto* addresses = allocateTaskMemory<PDO_SCSI_ADDRESS>(sizeof(PDO_SCSI_ADDRESS) +
                                                           count * sizeof(_MPIO_SCSI_ADDRESS));
    if (addresses == nullptr) return nullptr;
    addresses->NumberPdos = descriptor.NumberPdos;
    for (std::size_t i = 0; i < count; ++i) {
        addresses->ScsiAddress[i] = descriptor.PdoInformation[i].ScsiAddress;
    }
    return addresses;
}

}  // namespace

}  // namespace quista

unsigned long get_scsi_addresses(wchar_t* serial, PDO_SCSI_ADDRESS** addresses) {
    using namespace quista;
    return guarded(DSM_SERIAL_NOT_FOUND, [&]() -> DWORD {
        wchar_t instanceName[kInstanceNameCharacters] = {};
        _DSM_LOAD_BALANCE_TYPE policy{};
        // Kept: the descriptor is not freed.
        _MPIO_GET_DESCRIPTOR* descriptor = nullptr;
        const DWORD status =
            KORVA_GetInstance_for_Serial(serial, instanceName, &descriptor, &policy, nullptr);
        if (status != DSM_SUCCESS) return status;
        if (descriptor == nullptr) {
            // Kept: the name with the letter "i" in it is part of the text.
            ReportError(L"get_iscsi_addresses", DSM_NULL_MPIO_DESCRIPTOR);
            return DSM_NULL_MPIO_DESCRIPTOR;
        }
        PDO_SCSI_ADDRESS* block = copyAddresses(*descriptor);
        if (block == nullptr) return DSM_NO_MEMORY;
        *addresses = block;
        return DSM_SUCCESS;
    });
}

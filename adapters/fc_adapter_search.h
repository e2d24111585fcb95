// The search for the Fibre Channel port that carries a path.
#pragma once

#include <windows.h>

#include "adapters/adapter_buffers.h"
#include "adapters/hba_api.h"

namespace quista {

/// The SCSI address of a path as Windows sees it.
struct PathAddress {
    DWORD port;
    DWORD bus;
    DWORD target;
};

/// Finds the port that carries a path and gives its WWN and its adapter's name.
/// @return the status of the last call of the HBA API, or 1
hba::Status GetFCPAdapterInfo(const PathAddress& path, AdapterText& hbaAddress,
                              AdapterText& hbaName);

}  // namespace quista

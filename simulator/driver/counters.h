// The operation of MPIO_WMI_METHODS.
#pragma once

#include <windows.h>

#include "simulator/driver/driver_methods.h"

namespace quista::simulator {

/// SetDSMCounters: puts all members of the given object in the place of those of the registered DSM
/// with that context; a member that is NULL becomes 0. WBEM_E_INVALID_PARAMETER for a context that
/// no registration has and for a missing object; nothing is changed then.
HRESULT setDsmCounters(const MethodCall& call);

}  // namespace quista::simulator

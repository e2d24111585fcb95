// One entry of the MPIO disk list.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include "quista/records/mpio_records.h"

namespace quista {

/// Fills an entry from an embedded MPIO_DRIVE_INFO object, which may be null.
/// @return 0 or DSM_WMI_PARSING_ERROR
DWORD ParseLunInfo(IWbemClassObject* drive, _DSM_DRIVEINFO* entry);

}  // namespace quista

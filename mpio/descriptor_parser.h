// One MPIO disk's descriptor with its paths.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include "quista/records/mpio_records.h"

namespace quista {

/// Fills a zeroed block from an MPIO_GET_DESCRIPTOR instance; paths beyond `room` are passed over.
/// @return 0; DSM_WMI_PARSING_ERROR when a property cannot be read or there is no path;
///         DSM_WMI_FAILURE when the paths are no array of objects
DWORD ParseMpioDescr(IWbemClassObject* instance, _MPIO_GET_DESCRIPTOR* descriptor, LONG room);

/// Fills one path from an embedded PDO_INFORMATION object, which may be null.
/// @return 0 or DSM_WMI_PARSING_ERROR
DWORD ParsePdoInfo(IWbemClassObject* path, _PDO_INFORMATION* entry);

}  // namespace quista

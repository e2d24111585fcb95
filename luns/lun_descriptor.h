// The paths of a LUN in the shape of MPIO's descriptors.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include "quista/records/lun_records.h"
#include "quista/records/mpio_records.h"

namespace quista {

/// Allocates and fills a descriptor from a LUN instance, and the disk information when it is given.
/// @param descriptor receives a block that the caller frees with CoTaskMemFree, or null
/// @return 0; DSM_WMI_PARSING_ERROR when a property cannot be read; DSM_WMI_FAILURE when the paths
///         are no array of objects; DSM_NULL_MPIO_DESCRIPTOR without memory
DWORD ParseMpioDescrKORVA(IWbemClassObject* lun, _MPIO_GET_DESCRIPTOR** descriptor,
                          _DSM_DISKINFO* diskInfo);

}  // namespace quista

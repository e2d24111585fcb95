// What the MPIO framework knows: its disks and their paths, whatever DSM owns them.
#pragma once

#include "quista/records/mpio_records.h"

/// Counts the MPIO disks (MPIO_DISK_INFO.NumberDrives).
/// @param count written only on success
/// @return 0; DSM_WMI_FAILURE when the class cannot be enumerated; DSM_WMI_PARSING_ERROR when no
///         instance gives the count
unsigned long DSMGetNumberMpioLUNs(unsigned long* count);

/// Lists the MPIO disks with serial number, DSM and number of paths (class MPIO_DISK_INFO).
/// @param disks allocated by the caller with room for all disks
/// @return 0; DSM_WMI_FAILURE when the class cannot be enumerated; DSM_WMI_PARSING_ERROR when a
///         property cannot be read or no disk is listed
unsigned long DSMGetAllLunsEx(_DSM_DISKS* disks);

/// Lists the MPIO disks with the paths of each (class MPIO_GET_DESCRIPTOR).
/// @param list allocated by the caller with room for all disks; on success the caller frees each
///             descriptor with CoTaskMemFree; after any other status it holds nothing usable
/// @return 0; DSM_WMI_FAILURE when there is no disk or the class cannot be enumerated;
///         DSM_WMI_PARSING_ERROR when a property cannot be read; DSM_WMI_NOT_SUPPORTED when the
///         class is missing; DSM_NULL_MPIO_DESCRIPTOR without memory
unsigned long DSMGetMpioDescr(_MPIO_DESCRIPTOR_LIST* list);

// What the MPIO framework knows: its controllers, its disks and their paths, whatever DSM owns
// them; and the versions of the driver files.
#pragma once

#include "quista/records/mpio_records.h"
#include "quista/records/version_records.h"

/// Tells whether MPIO's controller configuration can be read (class MPIO_CONTROLLER_CONFIGURATION).
/// @param present receives 1 or 0; not written without memory
/// @return 0; DSM_INVALID_PARAMETERS for a null pointer; DSM_NO_MEMORY; DSM_WMI_PARSING_ERROR
unsigned long DSMIsMPIOPresent(unsigned char* present);

/// Tells whether a controller's DSM is the vendor's: its AssociatedDsm contains "Data KORVA DSM".
/// @return 1 or 0
unsigned char DSMIsLoaded();

/// As DSMIsLoaded, over all controllers that MPIO counts. Prints their DSMs to standard output.
/// @return 1 or 0
unsigned char KORVADSMIsLoaded();

/// Tells whether MPIO is present and the vendor's DSM registered with it. Prints as
/// KORVADSMIsLoaded does.
/// @param installed receives 1 or 0; not written without memory
/// @return 0, also when the DSM is not registered; DSM_INVALID_PARAMETERS for a null pointer;
///         DSM_NO_MEMORY; DSM_WMI_PARSING_ERROR when the controller configuration cannot be read
unsigned long KORVADSMIsInstalled(unsigned char* installed);

/// Reads the controllers that MPIO knows (class MPIO_CONTROLLER_CONFIGURATION).
/// @param config receives a block that the caller frees with CoTaskMemFree; not written on failure,
///               when the block is left to the process
/// @return 0; DSM_NO_MEMORY; DSM_WMI_PARSING_ERROR
unsigned long DSMGetControllerConfig(_MPIO_CONTROLLER_CONFIGURATION** config);

/// Counts the MPIO disks (MPIO_DISK_INFO.NumberDrives).
/// @param count written only on success
/// @return 0; DSM_WMI_FAILURE when the class cannot be enumerated; DSM_WMI_PARSING_ERROR when no
///         instance gives the count
unsigned long DSMGetNumberMpioLUNs(unsigned long* count);

/// Lists the MPIO disks with serial number, DSM and number of paths (class MPIO_DISK_INFO). Each
/// call leaves a few texts per disk to the process.
/// @param disks allocated by the caller with room for all disks; at most as many are listed as
///              DSMInitialize counted
/// @return 0; DSM_WMI_FAILURE when the class cannot be enumerated; DSM_WMI_PARSING_ERROR when a
///         property cannot be read or no disk is listed
unsigned long DSMGetAllLunsEx(_DSM_DISKS* disks);

/// Lists the MPIO disks with the paths of each (class MPIO_GET_DESCRIPTOR).
/// @param list allocated by the caller with room for all disks; on success the caller frees each
///             descriptor with CoTaskMemFree; after any other status it holds nothing usable, and
///             its count may be unwritten or 0xFFFFFFFF
/// @return 0; DSM_WMI_FAILURE when there is no disk, the class cannot be enumerated, a disk does
/// not
///         tell its number of paths or its paths are no array; DSM_WMI_PARSING_ERROR when another
///         property cannot be read or a disk has no paths; DSM_WMI_NOT_SUPPORTED when the class is
///         missing; DSM_NULL_MPIO_DESCRIPTOR without memory
unsigned long DSMGetMpioDescr(_MPIO_DESCRIPTOR_LIST* list);

/// Reads the file versions and last-write times of the calling program and of the drivers
/// korvadsm.sys, mpio.sys and msiscdsm.sys or msdsm.sys.
/// @param version allocated by the caller; the entry of a file that cannot be read is left alone
/// @return 0, whatever became of the files; DSM_ERROR without the environment variable SYSTEMROOT;
///         DSM_INVALID_DSM_VERSION for a null pointer or when the program's name is unknown
unsigned long DSMGetVersion(_DRIVER_VERSION* version);

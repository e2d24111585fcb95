// What the vendor DSM knows: its LUNs and their paths (class KORVADSM_LUNINFO); and the Windows
// disks that they appear as.
#pragma once

#include <list>
#include <map>
#include <string>

#include "quista/records/disk_records.h"
#include "quista/records/lun_records.h"
#include "quista/records/mpio_records.h"
#include "quista/records/policy_records.h"

struct IWbemClassObject;

/// Turns one KORVADSM_LUNINFO instance into a record with its paths.
/// @param lun the instance; the caller keeps its reference
/// @param out receives a block that the caller frees with CoTaskMemFree, partly filled when the
///            parse fails
/// @return 0; DSM_NO_MEMORY; DSM_WMI_FAILURE when the paths are no array of objects, or are more
///         than the instance's own count, or an IPv6 address is none; DSM_WMI_PARSING_ERROR when a
///         required property cannot be read
unsigned long ParseDiskInfoKORVA(IWbemClassObject* lun, _KORVADSM_DISKINFO** out);

/// Lists all LUNs without their paths; a repeated serial number is dropped. Each call leaves one
/// block per LUN to the process.
/// @param disks allocated by the caller with room for all LUNs; the count is not written when a LUN
///              cannot be parsed
/// @return 0; DSM_WMI_FAILURE when the query fails; DSM_WMI_PARSING_ERROR when there are no LUNs or
///         one cannot be parsed; DSM_NO_MEMORY; DSM_WMI_NOT_SUPPORTED or DSM_LUN_INFO_FAILED when
///         the enumeration breaks off
unsigned long KORVADSMGetAllLunsEx(_KORVADSM_DISKS* disks);

/// Finds one LUN by its serial number. As DSMGetDiskInfoKORVA, but a failed call may leave a
/// partly filled block in *out, which the caller frees with CoTaskMemFree; where the query finds
/// nothing *out is left alone.
/// @return as DSMGetDiskInfoKORVA
unsigned long CallGetDiskInfoKORVA(wchar_t* serial, _KORVADSM_DISKINFO** out);

/// Finds one LUN by its serial number, compared exactly.
/// @param out receives a block that the caller frees with CoTaskMemFree; null on failure
/// @return 0; DSM_SERIAL_NOT_FOUND; DSM_ERROR when the LUN cannot be parsed; DSM_LUN_INFO_FAILED
unsigned long DSMGetDiskInfoKORVA(wchar_t* serial, _KORVADSM_DISKINFO** out);

/// Appends every LUN instance to the caller's list. The caller releases each object.
/// @param count receives the number of instances appended
/// @return 0; DSM_WMI_FAILURE when the query fails; for a list that was not empty before also
///         DSM_WMI_NOT_SUPPORTED or DSM_LUN_INFO_FAILED when the enumeration breaks off
unsigned long KORVADSMGetAllDiskInfoEx(std::list<IWbemClassObject*>& luns, long& count);

/// Finds a LUN's instance name, policy and paths by its serial number. It takes the first LUN that
/// WMI finds, whose serial number may differ in the case of its letters.
/// @param instanceName receives the name with doubled backslashes between double quotes; the buffer
///                     holds at least 256 characters
/// @param descriptor   not null; receives a block that the caller frees with CoTaskMemFree: null
///                     where the number of paths cannot be read, partly filled where a path cannot,
///                     and left alone when there is no such LUN
/// @param policy       not null; receives KorvaDSMLoadBalancePolicy
/// @param diskInfo     filled with the paths when not null, as far as they can be read; room for
/// all
///                     paths is the caller's
/// @return 0, also when paths cannot be read; DSM_SERIAL_NOT_FOUND, also when the name cannot be
///         read; DSM_NO_MEMORY
unsigned long KORVA_GetInstance_for_Serial(wchar_t* serial, wchar_t* instanceName,
                                           _MPIO_GET_DESCRIPTOR** descriptor,
                                           _DSM_LOAD_BALANCE_TYPE* policy, _DSM_DISKINFO* diskInfo);

/// Counts the paths of one LUN (property NumberOfPaths).
/// @param numberOfPaths also holds the count of a LUN that was examined and did not match
/// @return 0; DSM_ERROR when no LUN matches or the query fails; DSM_WMI_NOT_SUPPORTED
unsigned long DSMGetNoPaths(wchar_t* serial, int* numberOfPaths);

/// Tells whether a path is the last available one of its LUN.
/// @param pathId the path's DsmId, widened with its sign to 64 bits
/// @param isLast receives 1 when no other path of the LUN has state 1 or 2, else 0
/// @return 0; DSM_PATH_NOT_FOUND; DSM_WMI_FAILURE when a property cannot be read, which leaves
///         isLast unwritten or 1; DSM_NO_MEMORY; DSM_ERROR when the LUNs cannot be enumerated
unsigned long IsLastAvlblPath(unsigned long long pathId, int* isLast);

/// Maps serial numbers to Windows disk numbers (class Win32_PhysicalMedia: SerialNumber and Tag).
/// @param media entries are added; the caller frees each value with CoTaskMemFree. A repeated
///              serial number replaces the earlier entry, whose block is lost
/// @param count receives the number of entries added
/// @return 0; DSM_WMI_FAILURE when the query fails; DSM_WMI_NOT_SUPPORTED
unsigned long KORVADSMGetAllWin32_PhysicalMedia(std::map<std::wstring, _WMIDISKDRIVEDATA*>* media,
                                                long& count);

/// Maps Plug and Play device identifiers to Windows disk numbers and sizes (class Win32_DiskDrive:
/// PNPDeviceID, Index and Size).
/// @param drives as for KORVADSMGetAllWin32_PhysicalMedia
/// @param count  receives the number of entries added
/// @return 0; DSM_WMI_FAILURE when the query fails; DSM_WMI_NOT_SUPPORTED; DSM_LUN_INFO_FAILED
unsigned long KORVADSMGetAllWin32_DiskDrive(std::map<std::wstring, _WMIDISKDRIVEDATA*>* drives,
                                            long& count);

/// Gives the SCSI addresses of all paths of a LUN. Each call that succeeds leaves a block, as large
/// as the LUN's descriptor, to the process.
/// @param addresses receives a block that the caller frees with CoTaskMemFree
/// @return 0; the status of KORVA_GetInstance_for_Serial; DSM_NULL_MPIO_DESCRIPTOR when it left no
///         descriptor; DSM_NO_MEMORY
unsigned long get_scsi_addresses(wchar_t* serial, PDO_SCSI_ADDRESS** addresses);

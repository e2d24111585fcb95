// Which adapter carries a path: Fibre Channel ports through the SNIA HBA API, iSCSI sessions
// through Windows' iSCSI discovery library and WMI.
#pragma once

#include <list>

#include "quista/records/adapter_records.h"

struct tagVARIANT;

extern "C" {

/// Finds the Fibre Channel adapter and port that carry a path, given the path's SCSI address.
/// @param portNumber        number in the operating-system device name of the adapter port; a port
///                          matches whose name contains it, so 1 also matches one named for 12
/// @param busNumber         SCSI bus of the path
/// @param targetNumber      SCSI target of the path
/// @param hbaAddress        receives the port's WWN, lower case and colon-separated; characters '0'
///                          when nothing was found. No terminator when the text fills the length
/// @param hbaAddressLength  characters to copy, padded with zeros behind the text; up to 256 are
///                          '0' when nothing was found
/// @param hbaName           receives the adapter's name, in the same way. A name of 128 characters
///                          or more is cut there, without a terminator and with '0' behind it
/// @return an HBA API status: 0, also when no port matched; 1 without API library, adapter or
///         memory, or when an adapter cannot be opened; else that of the last call, also when
///         another port matched
unsigned long GetFcAdapterInfoEx(unsigned long portNumber, unsigned long busNumber,
                                 unsigned long targetNumber, char* hbaAddress, int hbaAddressLength,
                                 char* hbaName, int hbaNameLength);

/// Finds the iSCSI session that carries a path. As GetISCSIAdapterInfo, with buffers that are
/// filled as GetFcAdapterInfoEx fills its own, but for texts of up to 256 characters.
/// @return 0; 0xFFFFFFFF without active target mappings; 0xFFFFFFFC when the discovery library
///         fails
unsigned long GetISCSIAdapterInfoEx(unsigned long portNumber, unsigned long busNumber,
                                    unsigned long targetNumber, char* hbaAddress,
                                    int hbaAddressLength, char* hbaName, int hbaNameLength);

}  // extern "C"

/// Finds the iSCSI session that carries a path, given the path's SCSI address.
/// @param hbaAddress receives the initiator's network address; at least 256 bytes, of which a text
///                   of that length leaves none for a terminator; left alone when no session
///                   carries the path
/// @param hbaName    receives the initiator adapter's name; at least 256 bytes; left alone when no
///                   mapping matches
/// @return 0; -1 without active target mappings; -4 when the discovery library fails
int GetISCSIAdapterInfo(unsigned int portNumber, unsigned int busNumber, unsigned int targetNumber,
                        char* hbaAddress, char* hbaName);

/// Finds the portals of one iSCSI initiator (class MSiSCSI_PortalInfoClass).
/// @param instanceName      the wanted InstanceName, as a string
/// @param foundInstanceName receives InstanceName. This and the next two hold the values of the
///                          last instance read, matching or not; the caller clears them. Values and
///                          references of instances passed over before are lost
/// @param portalInfoCount   receives PortalInfoCount
/// @param portalInformation receives PortalInformation
/// @return 0; DSM_ISCSI_PORTAL_NOT_FOUND; DSM_ISCSI_QUERY_FAILED; DSM_LUN_INFO_FAILED
unsigned long KORVADSMGetMsPortalInfoClass(tagVARIANT instanceName, tagVARIANT* foundInstanceName,
                                           tagVARIANT* portalInfoCount,
                                           tagVARIANT* portalInformation);

/// Lists the iSCSI initiator adapters with their portals (class MSiSCSI_HBAInformation).
/// @param adapters the list to append to; a null pointer is replaced by a new list. The caller
///                 frees each record and its portal array with CoTaskMemFree, and deletes the list
/// @return 0, also when the query cannot be started; else the status of the last adapter:
///         DSM_NO_MEMORY, also when the number of its portals is not what it says;
///         DSM_ISCSI_QUERY_FAILED; DSM_LUN_INFO_FAILED; the result of its last portal
unsigned long KORVADSMGetiSCSIAdapterIndexMap(std::list<_KORVADSM_ISCSI_HBAINFO*>*& adapters);

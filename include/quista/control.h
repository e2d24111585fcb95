// Steering the vendor DSM and MPIO: paths, load-balance policies, the persistent reservation key,
// parameters and timers.
#pragma once

#include "quista/records/policy_records.h"

// Path operations. A path is named by its DsmId, widened with its sign to 64 bits. Each operation
// calls a method of the KORVADSM_LUNINFO instance that owns the path, and returns: 0; DSM_ERROR
// when the driver refuses or the call fails; DSM_PATH_NOT_FOUND; DSM_WMI_FAILURE when a property or
// argument fails; the driver's own ReturnCode for a method that takes no inputs.

/// Makes a path active (method SetActive).
/// @return also DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE under the weighted-paths policy
unsigned long KORVADSMMakeActivePath(unsigned long long pathId);

/// Makes a path passive (method SetPassive).
/// @return also DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE under the weighted-paths policy
unsigned long KORVADSMMakePassivePath(unsigned long long pathId);

/// Enables a path (method SetEnabled).
unsigned long KORVADSMEnablePath(unsigned long long pathId);

/// Disables a path (method SetDisabled). It is not asked whether the path is the last one
/// available: see IsLastAvlblPath.
unsigned long KORVADSMDisablePath(unsigned long long pathId);

/// Sets a path's weight (method SetWeight).
/// @param weight without unit; under the weighted-paths policy the path of the lowest weight is
///               used. What values the driver takes is its own affair
unsigned long KORVADSMSetPathWeight(unsigned long long pathId, unsigned long weight);

/// Refreshes the target port group information of the LUN that owns the path (method UpdateRTPG).
/// The identifier is widened without sign, so a path whose DsmId is negative is out of its reach.
unsigned long KORVADSMUpdateTPG(unsigned long pathId);

/// Sets the policy for newly claimed LUNs (DefaultLoadBalancePolicy of every KORVADSM instance).
/// @param policy MPIO's number; not checked against those that are published
/// @return 0, also when a later instance than the first cannot be written;
///         DSM_SET_DEFAULT_LBP_FAILED
unsigned long KORVADSMSetDefaultLBP(int policy);

/// Reads the policy for newly claimed LUNs (DefaultLoadBalancePolicy of the last KORVADSM
/// instance).
/// @param policy receives MPIO's number; written for each instance read, also when a later one
/// fails
/// @return 0; DSM_GET_DEFAULT_LBP_FAILED
unsigned long KORVADSMGetDefaultLBP(int* policy);

/// Sets the policy of one LUN (method DSMSetLoadBalancePolicy of DSM_LB_Operations). Under Failover
/// Only the first path that MPIO lists becomes the primary path.
/// The call does not return when MPIO has no DSM_LB_Operations instance for the LUN.
/// @param serialNumber compared exactly; not changed
/// @param policy       only its number is read
/// @return 0, also when the number cannot be put into MPIO's policy object or the execution of the
///         method fails; DSM_ERROR when the driver refuses; DSM_WMI_FAILURE, also for an unknown
///         serial number; DSM_FILER_VERSION_INCOMPATIBLE
unsigned long KORVADSMSetDiskPolicy(wchar_t* serialNumber, _DSM_LOAD_BALANCE_TYPE* policy);

/// Lists the policies that a LUN supports (class DSM_QuerySupportedLBPolicies).
/// @param serialNumber compared exactly; not changed
/// @param list allocated by the caller with room for as many entries as the LUN reports in
///             SupportedLBPoliciesCount; untouched unless the policies were read. LBPDescFree frees
///             the first Count entries. An entry that could not be read is left alone and not
///             counted, so that behind such a gap an entry may lie beyond Count: the caller frees
///             it with CoTaskMemFree
/// @return 0; DSM_NO_MEMORY; DSM_WMI_FAILURE; the status of the serial-number lookup
unsigned long KORVADSMGetDiskPolicies(wchar_t* serialNumber, _LBP_DESCRIPTOR_LIST* list);

/// Frees the first Count entries of a list of policies, not the list itself.
void LBPDescFree(_LBP_DESCRIPTOR_LIST* list);

/// Writes the persistent reservation key, 8 bytes, into the DSM's service parameters in the
/// registry.
/// @return 0; DSM_SET_DEFAULT_LBP_FAILED when the key cannot be opened; DSM_REGISTRY_WRITE_FAILED
unsigned long Reg_Set_PR(char* key);

/// Reads the persistent reservation key, 8 bytes, from the registry. A shorter value is filled up
/// with zeros.
/// @return 0; DSM_GET_PR_KEY_FAILED
unsigned long Reg_Get_PR(char* key);

/// Writes the persistent reservation key, 8 bytes, to the driver (ReservationKey of the first
/// KORVADSM instance).
/// @return 0; DSM_ERROR
unsigned long KORVADSMSetPRKey(char* key);

/// Reads the persistent reservation key of one LUN, 8 bytes (KORVADSM_LUNINFO.ReservationKey).
/// @param key receives the bytes; a call that fails may have written some of them
/// @return 0; DSM_ERROR
unsigned long KORVADSMGetPRKey(unsigned char* key, wchar_t* serialNumber);

/// Writes the DSM's event log level (KORVADSM.EventLogLevel) and its counters in MPIO's
/// registration (method SetDsmCounters of MPIO_WMI_METHODS).
/// @param selector ignored
/// @return 0; DSM_WMI_PARSING_ERROR; the result of a failed WMI call, which is 1 (WBEM_S_FALSE)
///         when there is no KORVADSM instance
unsigned long DSMSetKorvadsmParameters(unsigned int selector, _QUISTA_PROPERTY_SET* set);

/// Reads the DSM's event log level (KORVADSM.EventLogLevel) and its counters
/// (MPIO_REGISTERED_DSM.DsmParameters).
/// @param selector ignored
/// @param set      what could be read is filled in; an event log level that its instance does not
///                 give becomes 0
/// @return as DSMSetKorvadsmParameters
unsigned long DSMGetKorvadsmParameters(unsigned int selector, _QUISTA_PROPERTY_SET* set);

// MPIO's timers (class MPIO_TIMERS_COUNTERS). Each call returns 0 or DSM_WMI_PARSING_ERROR; a
// getter writes only on success, a setter changes its own timer only.

/// Whether MPIO verifies paths: 1 or 0.
unsigned long DSMGetPathVerifyEnabled(unsigned char* enabled);
unsigned long DSMSetPathVerifyEnabled(unsigned char enabled);

/// How often MPIO verifies paths, in seconds.
unsigned long DSMGetPathVerificationPeriod(unsigned long* seconds);
unsigned long DSMSetPathVerificationPeriod(unsigned long seconds);

/// How long MPIO keeps a disk after its last path has gone, in seconds.
unsigned long DSMGetPDORemovePeriod(unsigned long* seconds);
unsigned long DSMSetPDORemovePeriod(unsigned long seconds);

/// How often MPIO retries a failed request.
unsigned long DSMGetRetryCount(unsigned long* count);
unsigned long DSMSetRetryCount(unsigned long count);

/// How long MPIO waits between retries, in seconds.
unsigned long DSMGetRetryInterval(unsigned long* seconds);
unsigned long DSMSetRetryInterval(unsigned long seconds);

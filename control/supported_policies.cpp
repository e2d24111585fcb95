// The load-balance policies that one LUN supports.
#include <windows.h>

#include <wbemcli.h>

#include <string>

#include "frame/error_log.h"
#include "frame/guard.h"
#include "frame/task_memory.h"
#include "luns/instance_lookup.h"
#include "luns/lun_query.h"
#include "quista/control.h"
#include "quista/frame.h"
#include "quista/status.h"
#include "wmi/instance_names.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

/// Finds the LUN's instance of DSM_QuerySupportedLBPolicies. The places name the serial number.
/// @return 0 or DSM_WMI_FAILURE
DWORD findInstance(const std::wstring& serial, const std::wstring& lunName,
                   ComRef<IWbemClassObject>& instance) {
    ComRef<IEnumWbemClassObject> instances;
    const std::wstring enumPlace =
        L"KORVADsmCallGetDiskPoliciesforLUN:IWbemServices::CreateInstanceEnum failed for "
        L"SerialNo " +
        serial;
    if (logFailure(enumerateClass(L"DSM_QuerySupportedLBPolicies", instances), enumPlace.c_str()) !=
        S_OK) {
        return DSM_WMI_FAILURE;
    }
    const std::wstring nextPlace =
        L"KORVADsmCallGetDiskPoliciesforLUN: IEnumWbemClassObject::Next failed for SerialNo " +
        serial;
    const std::wstring namePlace =
        L"KORVADSMCallGetDiskPoliciesForLun: IwbemClassObject::Get failed for SerialNo " + serial +
        L":";
    while (nextOrLog(instances.get(), instance, nextPlace.c_str()) == S_OK) {
        UniqueVariant name;
        if (getOrLog(instance.get(), L"InstanceName", name, namePlace.c_str()) != S_OK) break;
        if (quoted(escapeBackslashes(stringOf(name.get()))) == lunName) return DSM_SUCCESS;
    }
    return DSM_WMI_FAILURE;
}

/// Stores one policy number in a block of its own.
/// @return DSM_NO_MEMORY without memory for it
DWORD storePolicy(unsigned long number, unsigned long*& entry, const std::wstring& serial) {
    auto* policy = allocateTaskMemory<unsigned long>(sizeof(unsigned long));
    if (policy == nullptr) {
        ReportError((L"KORVADsmCallGetDiskPoliciesforLUN: SerialNumber " + serial +
                     L" Memory allocation error LBalancePolicy")
                        .c_str(),
                    DSM_NO_MEMORY);
        return DSM_NO_MEMORY;
    }
    *policy = number;
    entry = policy;
    return DSM_SUCCESS;
}

/// Stores each policy under its position in the array. Kept: a policy that cannot be read leaves
/// its entry as it was, and the count only counts those stored.
DWORD storePolicies(const ObjectTable& policies, unsigned long expected, const std::wstring& serial,
                    _LBP_DESCRIPTOR_LIST& list) {
    const std::wstring place =
        L"KORVADsmCallGetDiskPoliciesforLUN: IEnumWbemClassObject::Get LoadBalancePolicy for "
        L"SerialNumber " +
        serial;
    // Declared for the policies that are published; the caller's record has room for more where
    // the LUN reports more.
    unsigned long** entries = list.Descriptor;
    DWORD status = DSM_SUCCESS;
    unsigned long stored = 0;
    const auto fetched = static_cast<unsigned long>(policies.count());
    for (unsigned long i = 0; i < expected; ++i) {
        IWbemClassObject* policy = i < fetched ? policies.at(static_cast<LONG>(i)) : nullptr;
        UniqueVariant number;
        if (getOrLog(policy, L"LoadBalancePolicy", number, place.c_str()) != S_OK) continue;
        if (storePolicy(number.rawLong(), entries[i], serial) == DSM_SUCCESS) {
            ++stored;
        } else {
            status = DSM_NO_MEMORY;
        }
    }
    if (stored < expected) {
        ReportError((L"KORVADsmCallGetDiskPoliciesForLUN: missing some load balance policies for "
                     L"SerialNumber " +
                     serial)
                        .c_str(),
                    DSM_WMI_PARSING_ERROR);
    }
    list.Count = stored;
    return status;
}

DWORD readPolicies(IWbemClassObject* instance, const std::wstring& serial,
                   _LBP_DESCRIPTOR_LIST& list) {
    UniqueVariant count;
    // Kept: here and below a failed read leaves the list alone and still counts as a success.
    if (getOrLog(instance, L"SupportedLBPoliciesCount", count,
                 (L"KORVADsmCallGetDiskPoliciesforLUN: IEnumWbemClassObject::Get "
                  L"SupportedLBPoliciesCount failed for SerialNumber " +
                  serial)
                     .c_str()) != S_OK) {
        return DSM_SUCCESS;
    }
    ObjectTable policies(count.rawLong());
    if (!policies.valid()) {
        ReportError((L"KORVADsmCallGetDiskPoliciesforLUN: SerialNumber " + serial +
                     L" - Memory allocation error for SupportedPolicies")
                        .c_str(),
                    DSM_NO_MEMORY);
        return DSM_NO_MEMORY;
    }
    UniqueVariant array;
    if (getOrLog(instance, L"Supported_LB_Policies", array,
                 (L"KORVADsmCallGetDiskPoliciesforLUN: IEnumWbemClassObject::Get "
                  L"Support_LB_Policies failed for SerialNumber " +
                  serial)
                     .c_str()) != S_OK) {
        return DSM_SUCCESS;
    }
    policies.fill(array.get());
    return storePolicies(policies, count.rawLong(), serial, list);
}

DWORD getDiskPolicies(wchar_t* serialNumber, _LBP_DESCRIPTOR_LIST& list) {
    wchar_t lunName[kInstanceNameCharacters] = {};
    const DWORD lookup = GetInstance_for_SerialNo(serialNumber, lunName);
    if (lookup != DSM_SUCCESS) return lookup;

    const std::wstring serial = serialText(serialNumber);
    ComRef<IWbemClassObject> instance;
    const DWORD status = findInstance(serial, lunName, instance);
    return status == DSM_SUCCESS ? readPolicies(instance.get(), serial, list) : status;
}

}  // namespace

}  // namespace quista

unsigned long KORVADSMGetDiskPolicies(wchar_t* serialNumber, _LBP_DESCRIPTOR_LIST* list) {
    using namespace quista;
    return guarded(DSM_WMI_FAILURE, [&] { return getDiskPolicies(serialNumber, *list); });
}

void LBPDescFree(_LBP_DESCRIPTOR_LIST* list) {
    if (list == nullptr) return;
    unsigned long** entries = list->Descriptor;
    // Entries and count stay as they are: the list is the caller's.
    for (unsigned long i = 0; i < list->Count; ++i) CoTaskMemFree(entries[i]);
}

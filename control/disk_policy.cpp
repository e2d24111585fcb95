// Setting the load-balance policy of one LUN.
#include <windows.h>

#include <wbemcli.h>

#include <algorithm>
#include <string>

#include "frame/bstr.h"
#include "frame/console.h"
#include "frame/error_log.h"
#include "frame/guard.h"
#include "luns/instance_lookup.h"
#include "quista/control.h"
#include "quista/status.h"
#include "wmi/instance_names.h"
#include "wmi/method_call.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

constexpr unsigned long kFailoverOnly = 1;
// The driver's code for a storage system that does not support the request.
constexpr DWORD kStorageSystemTooOld = 0xE0000008;
constexpr DWORD kFirstRefusal = 0x40000000;

/// Finds the policy object of the LUN among the instances of DSM_QueryLBPolicy.
/// @return false when the enumeration ended or a name could not be read
bool findPolicyObject(IEnumWbemClassObject* instances, const std::wstring& lunName,
                      UniqueVariant& policyObject) {
    ComRef<IWbemClassObject> instance;
    while (nextOrLog(instances, instance,
                     L"KORVADsmCallSetDiskPolicyMethod: IEnumWbemClassObject::Next") == S_OK) {
        UniqueVariant name;
        if (getOrLog(instance.get(), L"InstanceName", name, L"IWbemClassObject::Get") != S_OK) {
            return false;
        }
        const std::wstring quotedName = quoted(escapeBackslashes(stringOf(name.get())));
        static_cast<void>(getProperty(instance.get(), L"LoadBalancePolicy", policyObject));
        OutputDebugStringW((L"KorvadsmCallSetDiskPolicyMethod lun instancename: " + lunName +
                            L", querylbpinst: " + quotedName)
                               .c_str());
        if (quotedName == lunName) {
            // Kept: the text ends in a slash and an "n", and is printed whatever gConsoleTrace
            // says.
            printLine(L"KorvadsmCallSetDiskPolicyMethod: Found a match/n");
            return true;
        }
    }
    return false;
}

bool putPolicyNumber(IWbemClassObject* policyObject, unsigned long number) {
    if (policyObject == nullptr) return false;
    UniqueVariant value;
    static_cast<void>(getProperty(policyObject, L"LoadBalancePolicy", value));
    value.setLong(number);
    return policyObject->Put(L"LoadBalancePolicy", 0, &value.get(), 0) == S_OK;
}

bool putPrimaryFlag(IWbemClassObject* path, bool primary) {
    UniqueVariant flag;
    if (getProperty(path, L"PrimaryPath", flag) != S_OK) return false;
    flag.setLong(primary ? 1 : 0);
    return path->Put(L"PrimaryPath", 0, &flag.get(), 0) == S_OK;
}

/// Under Failover Only the first path that MPIO lists becomes the only primary path.
bool makeFirstPathPrimary(IWbemClassObject* policyObject) {
    UniqueVariant count;
    UniqueVariant paths;
    if (getProperty(policyObject, L"DSMPathCount", count) != S_OK ||
        getProperty(policyObject, L"DSM_Paths", paths) != S_OK) {
        return false;
    }
    ObjectTable objects(roomFor(paths.get(), count.rawLong()));
    objects.fill(paths.get());
    for (LONG i = 0; i < objects.count(); ++i) {
        if (!putPrimaryFlag(objects.at(i), i == 0)) return false;
        ElementsToSafeArray(paths.get(), objects.slots(), objects.count());
    }
    return policyObject->Put(L"DSM_Paths", 0, &paths.get(), 0) == S_OK;
}

DWORD callSetPolicy(UniqueVariant& policyObject, const std::wstring& lunName) {
    const UniqueBstr input(L"LoadBalancePolicy");
    const UniqueBstr output(L"Status");
    BSTR names[] = {input.get(), output.get()};
    VARIANT* values[] = {&policyObject.get(), nullptr};
    return CallMethodForInstance(L"DSM_LB_Operations", L"DSMSetLoadBalancePolicy", names, values, 2,
                                 lunName.c_str());
}

/// Kept: a driver's own status of 14 cannot be told from a WMI failure.
DWORD toStatus(DWORD result) {
    if (result == DSM_WMI_FAILURE) return DSM_WMI_FAILURE;
    if (result == kStorageSystemTooOld) return DSM_FILER_VERSION_INCOMPATIBLE;
    return result >= kFirstRefusal ? DSM_ERROR : DSM_SUCCESS;
}

DWORD setDiskPolicy(wchar_t* serialNumber, unsigned long number) {
    wchar_t lunName[kInstanceNameCharacters] = {};
    // An unknown serial number does not end the call: no instance matches it then.
    const DWORD lookup = GetInstance_for_SerialNo(serialNumber, lunName);

    ComRef<IEnumWbemClassObject> instances;
    if (logFailure(enumerateClass(L"DSM_QueryLBPolicy", instances),
                   L"KORVADsmCallSetDiskPolicyMethod:IWbemServices::CreateInstanceEnum") != S_OK) {
        return DSM_WMI_FAILURE;
    }
    UniqueVariant policyObject;
    if (!findPolicyObject(instances.get(), lunName, policyObject)) return DSM_WMI_FAILURE;
    instances.reset();

    ComRef<IWbemClassObject> policy;
    static_cast<void>(toEmbeddedObject(policyObject.get(), policy));
    // Kept: a policy number that cannot be put is reported with the lookup's status, a success.
    if (!putPolicyNumber(policy.get(), number)) return lookup;
    if (number == kFailoverOnly && !makeFirstPathPrimary(policy.get())) return DSM_WMI_FAILURE;
    return toStatus(callSetPolicy(policyObject, lunName));
}

}  // namespace

}  // namespace quista

unsigned long KORVADSMSetDiskPolicy(wchar_t* serialNumber, _DSM_LOAD_BALANCE_TYPE* policy) {
    using namespace quista;
    return guarded(DSM_ERROR, [&] { return setDiskPolicy(serialNumber, policy->Policy); });
}

// The load-balance policy that the DSM gives to newly claimed LUNs.
#include <windows.h>

#include <wbemcli.h>

#include "frame/error_log.h"
#include "frame/guard.h"
#include "frame/session.h"
#include "quista/control.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/query.h"

namespace quista {

namespace {

constexpr const wchar_t* kProperty = L"DefaultLoadBalancePolicy";

bool writePolicy(IWbemClassObject* dsm, unsigned long policy) {
    UniqueVariant value;
    CIMTYPE type = 0;
    if (getOrLog(dsm, kProperty, value, L"KORVADSMSetDefaultLBP::Get(DefaultLBP)", &type) != S_OK) {
        return false;
    }
    value.setLong(policy);
    if (logFailure(dsm->Put(kProperty, 0, &value.get(), type),
                   L"KORVADSMSetDefaultLBP::Put(DefaultLBP)") != S_OK) {
        return false;
    }
    return logFailure(gServices->PutInstance(dsm, 0, nullptr, nullptr),
                      L"KORVADSMSetDefaultLBP::PutInstance(DefaultLBP)") == S_OK;
}

/// Every KORVADSM instance gets the policy. A failure after the first one ends the call with the
/// status reached, which is a success.
DWORD setDefaultPolicy(unsigned long policy) {
    DWORD status = DSM_SET_DEFAULT_LBP_FAILED;
    ComRef<IEnumWbemClassObject> instances;
    if (enumerateClass(L"KORVADSM", instances) != S_OK) return status;
    ComRef<IWbemClassObject> dsm;
    while (nextOrLog(instances.get(), dsm, L"KORVADSMSetDefaultLBP: IEnumWbemClassObject::Next") ==
           S_OK) {
        if (!writePolicy(dsm.get(), policy)) break;
        status = DSM_SUCCESS;
    }
    return status;
}

/// The last instance wins.
DWORD getDefaultPolicy(int& policy) {
    ComRef<IEnumWbemClassObject> instances;
    if (logFailure(enumerateClass(L"KORVADSM", instances),
                   L"KORVADSMGetDefaultLBP:: Unable to create KORVADSM instance") != S_OK) {
        return DSM_GET_DEFAULT_LBP_FAILED;
    }
    DWORD status = DSM_GET_DEFAULT_LBP_FAILED;
    ComRef<IWbemClassObject> dsm;
    while (nextOrLog(instances.get(), dsm, L"KORVADSMGetDefaultLBP: IEnumWbemClassObject::Next") ==
           S_OK) {
        UniqueVariant value;
        if (getOrLog(dsm.get(), kProperty, value, L"KORVADSMGetDefaultLBP::Get(DefaultLBP)") !=
            S_OK) {
            return DSM_GET_DEFAULT_LBP_FAILED;
        }
        policy = static_cast<int>(value.rawLong());
        status = DSM_SUCCESS;
    }
    return status;
}

}  // namespace

}  // namespace quista

unsigned long KORVADSMSetDefaultLBP(int policy) {
    using namespace quista;
    return guarded(DSM_SET_DEFAULT_LBP_FAILED,
                   [&] { return setDefaultPolicy(static_cast<unsigned long>(policy)); });
}

unsigned long KORVADSMGetDefaultLBP(int* policy) {
    using namespace quista;
    return guarded(DSM_GET_DEFAULT_LBP_FAILED, [&] { return getDefaultPolicy(*policy); });
}

// The portals of one iSCSI initiator.
#include <windows.h>

#include <oleauto.h>
#include <wbemcli.h>

#include <string>
#include <utility>

#include "adapters/iscsi_results.h"
#include "frame/guard.h"
#include "quista/adapters.h"
#include "quista/status.h"
#include "wmi/com_ref.h"
#include "wmi/property.h"
#include "wmi/query.h"

namespace quista {

namespace {

/// Where the caller wants the properties of the instance found.
struct PortalOutputs {
    VARIANT* instanceName;
    VARIANT* count;
    VARIANT* information;
};

/// Reads an instance's properties straight into the caller's values. Kept: those of an earlier
/// instance are overwritten without being cleared.
DWORD readInstance(IWbemClassObject* instance, const PortalOutputs& outputs) {
    HRESULT result = instance->Get(L"InstanceName", 0, outputs.instanceName, nullptr, nullptr);
    result |= instance->Get(L"PortalInfoCount", 0, outputs.count, nullptr, nullptr);
    result |= instance->Get(L"PortalInformation", 0, outputs.information, nullptr, nullptr);
    if (result != S_OK) return DSM_ISCSI_PORTAL_READ_FAILED;
    return outputs.information->vt == (VT_ARRAY | VT_UNKNOWN) ? DSM_SUCCESS : DSM_WMI_FAILURE;
}

DWORD findPortals(const VARIANT& wanted, const PortalOutputs& outputs) {
    DWORD status = DSM_ISCSI_PORTAL_NOT_FOUND;
    ComRef<IEnumWbemClassObject> instances;
    if (DsmExecQuery(instances.receive(), L"SELECT * FROM MSiSCSI_PortalInfoClass") != S_OK) {
        return status;
    }
    const std::wstring wantedName = stringOf(wanted);
    ComRef<IWbemClassObject> last;
    for (;;) {
        ComRef<IWbemClassObject> instance;
        const HRESULT next = nextInstance(instances.get(), instance);
        if (next != S_OK) return statusAfterLastIscsi(next, status);
        // Kept: of the instances passed over only the last is released.
        last.keepOnPurpose();
        last = std::move(instance);
        if (readInstance(last.get(), outputs) != DSM_SUCCESS) {
            status = DSM_ISCSI_QUERY_FAILED;
        } else if (stringOf(*outputs.instanceName) == wantedName) {
            return DSM_SUCCESS;
        }
    }
}

}  // namespace

}  // namespace quista

unsigned long KORVADSMGetMsPortalInfoClass(VARIANT instanceName, VARIANT* foundInstanceName,
                                           VARIANT* portalInfoCount, VARIANT* portalInformation) {
    using namespace quista;
    return guarded(DSM_ISCSI_PORTAL_NOT_FOUND, [&] {
        return findPortals(instanceName, {foundInstanceName, portalInfoCount, portalInformation});
    });
}

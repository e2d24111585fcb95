// The iSCSI initiator adapters of the machine, with readable names and their portals.
#include <windows.h>

#include <oleauto.h>
#include <wbemcli.h>

#include <algorithm>
#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <utility>

#include "adapters/iscsi_results.h"
#include "frame/guard.h"
#include "frame/task_memory.h"
#include "quista/adapters.h"
#include "quista/status.h"
#include "wmi/addresses.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/safe_arrays.h"
#include "wmi/text_field.h"

namespace quista {

namespace {

using AdapterList = std::list<_KORVADSM_ISCSI_HBAINFO*>;

/// What is read of one MSiSCSI_HBAInformation instance.
struct AdapterProperties {
    UniqueVariant instanceName;
    UniqueVariant driverName;
    UniqueVariant uniqueAdapterId;  // read, as the others are, and not used
    UniqueVariant vendorModel;

    bool read(IWbemClassObject* adapter) {
        HRESULT result = getProperty(adapter, L"InstanceName", instanceName);
        result |= getProperty(adapter, L"DriverName", driverName);
        result |= getProperty(adapter, L"UniqueAdapterId", uniqueAdapterId);
        result |= getProperty(adapter, L"VendorModel", vendorModel);
        return result == S_OK;
    }

    /// Such as MS-iSCSI-Initiator-0000_0: the name by which the lookup of a path's adapter calls
    /// Windows' software initiator too.
    std::wstring description() const {
        constexpr std::size_t kSuffix = 6;
        std::wstring text = stringOf(driverName.get()) == L"msiscsi.sys" ? L"MS-" : L"";
        text += stringOf(vendorModel.get());
        std::replace(text.begin(), text.end(), L' ', L'-');
        const std::wstring name = stringOf(instanceName.get());
        return text + L"-" + name.substr(name.size() > kSuffix ? name.size() - kSuffix : 0);
    }
};

_KORVADSM_ISCSI_PORTAL* allocatePortals(std::size_t count) {
    auto* portals =
        allocateTaskMemory<_KORVADSM_ISCSI_PORTAL>(count * sizeof(_KORVADSM_ISCSI_PORTAL));
    if (portals == nullptr) return nullptr;
    std::for_each(portals, portals + count,
                  [](_KORVADSM_ISCSI_PORTAL& portal) { portal.Valid = 1; });
    return portals;
}

/// Fills an adapter's portals. Whether they were found is not asked: without portal information
/// there are none.
DWORD readPortals(const VARIANT& instanceName, _KORVADSM_ISCSI_HBAINFO& adapter) {
    UniqueVariant name;
    UniqueVariant count;
    UniqueVariant information;
    static_cast<void>(KORVADSMGetMsPortalInfoClass(instanceName, name.receive(), count.receive(),
                                                   information.receive()));
    const std::uint32_t expected = count.rawLong();
    if (static_cast<std::uint32_t>(boundsOf(information.get()).count()) != expected) {
        return DSM_NO_MEMORY;
    }
    ObjectTable objects(expected);
    if (!objects.valid() ||
        static_cast<std::uint32_t>(objects.fill(information.get())) != expected) {
        return DSM_NO_MEMORY;
    }
    if (expected == 0) return DSM_SUCCESS;
    adapter.Portals = allocatePortals(expected);
    if (adapter.Portals == nullptr) return DSM_NO_MEMORY;
    adapter.PortalCount = expected;
    return static_cast<DWORD>(
        GetPortalAddresses(objects.objects(), adapter.Portals, adapter.PortalCount));
}

/// Appends one adapter to the list. The record stays there when its portals cannot be read.
DWORD appendAdapter(IWbemClassObject* instance, UniqueTaskMemory<_KORVADSM_ISCSI_HBAINFO> record,
                    AdapterList& adapters) {
    AdapterProperties properties;
    if (!properties.read(instance)) return DSM_ISCSI_QUERY_FAILED;
    copyToField(record->Description, properties.description().c_str());
    adapters.push_back(record.get());
    _KORVADSM_ISCSI_HBAINFO& adapter = *record.release();
    return readPortals(properties.instanceName.get(), adapter);
}

DWORD listAdapters(AdapterList& adapters) {
    ComRef<IEnumWbemClassObject> instances;
    if (DsmExecQuery(instances.receive(), L"SELECT * FROM MSiSCSI_HBAInformation") != S_OK) {
        return DSM_SUCCESS;
    }
    DWORD status = DSM_SUCCESS;
    for (;;) {
        ComRef<IWbemClassObject> instance;
        const HRESULT next = nextInstance(instances.get(), instance);
        if (next != S_OK) return statusAfterLastIscsi(next, status);
        UniqueTaskMemory<_KORVADSM_ISCSI_HBAINFO> record(
            allocateTaskMemory<_KORVADSM_ISCSI_HBAINFO>(sizeof(_KORVADSM_ISCSI_HBAINFO)));
        if (record == nullptr) return DSM_NO_MEMORY;
        status = appendAdapter(instance.get(), std::move(record), adapters);
    }
}

}  // namespace

}  // namespace quista

unsigned long KORVADSMGetiSCSIAdapterIndexMap(std::list<_KORVADSM_ISCSI_HBAINFO*>*& adapters) {
    using namespace quista;
    return guarded(DSM_ISCSI_QUERY_FAILED, [&] {
        if (adapters == nullptr) adapters = new AdapterList;
        return listAdapters(*adapters);
    });
}

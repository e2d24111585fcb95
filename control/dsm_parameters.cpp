// The DSM's parameters: its event log level and its counters.
#include <windows.h>

#include <wbemcli.h>

#include "control/dsm_counters.h"
#include "frame/error_log.h"
#include "frame/guard.h"
#include "frame/session.h"
#include "quista/control.h"
#include "quista/frame.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/query.h"

namespace quista {

namespace {

constexpr const wchar_t* kEventLogLevel = L"EventLogLevel";

/// Takes the first KORVADSM instance. An enumeration that cannot be started is passed over: there
/// is no instance then, and no failure.
DWORD firstDsm(ComRef<IWbemClassObject>& dsm, const wchar_t* nullPlace, const wchar_t* nextPlace) {
    ComRef<IEnumWbemClassObject> instances;
    if (createInstanceEnum(L"KORVADSM", instances) != S_OK) return DSM_SUCCESS;
    if (!instances) {
        ReportError(nullPlace, DSM_WMI_PARSING_ERROR);
        return DSM_WMI_PARSING_ERROR;
    }
    return static_cast<DWORD>(nextOrLog(instances.get(), dsm, nextPlace));
}

/// Whether the level could be written does not decide the status.
void writeEventLogLevel(IWbemClassObject* dsm, unsigned long level) {
    static_cast<void>(putLong(dsm, kEventLogLevel, level));
    static_cast<void>(gServices->PutInstance(dsm, 0, nullptr, nullptr));
}

void readEventLogLevel(IWbemClassObject* dsm, unsigned long& level) {
    UniqueVariant value;
    static_cast<void>(getProperty(dsm, kEventLogLevel, value));
    level = value.rawLong();
}

DWORD setParameters(const _QUISTA_PROPERTY_SET& set) {
    ComRef<IWbemClassObject> dsm;
    const DWORD status = firstDsm(dsm, L"SetKorvadsmParameters: enumerator is NULL",
                                  L"SetKorvadsmParameters: IEnumWbemClassObject::Next");
    if (status != DSM_SUCCESS) return status;
    if (dsm) writeEventLogLevel(dsm.get(), set.EventLogLevel);
    return writeDsmCounters(set);
}

DWORD getParameters(_QUISTA_PROPERTY_SET& set) {
    ComRef<IWbemClassObject> dsm;
    DWORD status = firstDsm(dsm, L"GetKorvadsmParameters: enumerator is NULL",
                            L"GetKorvadsmParameters: IEnumWbemClassObject::Next");
    if (status != DSM_SUCCESS) return status;
    if (dsm) readEventLogLevel(dsm.get(), set.EventLogLevel);
    status = readDsmCounters(set);
    if (status != DSM_SUCCESS) {
        ReportError(L"Cannot get DSMCounters", status);
        OutputDebugStringW(L"Cannot get dsmcounters");
    }
    return status;
}

}  // namespace

}  // namespace quista

unsigned long DSMSetKorvadsmParameters(unsigned int /*selector*/, _QUISTA_PROPERTY_SET* set) {
    using namespace quista;
    return guarded(DSM_WMI_PARSING_ERROR, [&] { return setParameters(*set); });
}

unsigned long DSMGetKorvadsmParameters(unsigned int /*selector*/, _QUISTA_PROPERTY_SET* set) {
    using namespace quista;
    return guarded(DSM_WMI_PARSING_ERROR, [&] { return getParameters(*set); });
}

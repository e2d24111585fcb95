#include "control/dsm_counters.h"

#include <wbemcli.h>

#include <string>

#include "frame/bstr.h"
#include "frame/console.h"
#include "frame/error_log.h"
#include "frame/session.h"
#include "quista/frame.h"
#include "quista/status.h"
#include "wmi/instance_names.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

constexpr const wchar_t* kDsmName = L"Data KORVA DSM";
constexpr const wchar_t* kMethodsClass = L"MPIO_WMI_METHODS";
constexpr const wchar_t* kCountersPlace = L"GetDsmCounters::Get could not get dsmCounters";

/// The vendor DSM's entry in MPIO's registration.
struct Registration {
    ComRef<IWbemClassObject> instance;
    UniqueVariant context;        ///< DsmContext, as decimal text
    UniqueVariant countersValue;  ///< DsmCounters
    ComRef<IWbemClassObject> counters;
};

/// Which counter is kept in which field.
struct Counter {
    const wchar_t* property;
    unsigned long _QUISTA_PROPERTY_SET::*field;
};

constexpr Counter kCounters[] = {
    {L"PDORemovePeriod", &_QUISTA_PROPERTY_SET::PDORemovePeriod},
    {L"RetryCount", &_QUISTA_PROPERTY_SET::RetryCount},
    {L"RetryInterval", &_QUISTA_PROPERTY_SET::RetryInterval},
};

bool findInstance(ComRef<IWbemClassObject>& instance) {
    constexpr const wchar_t* kPlace = L"GetDSMCounters: IEnumWbemClassObject::Next";
    ComRef<IEnumWbemClassObject> instances;
    return logFailure(enumerateClass(L"MPIO_REGISTERED_DSM", instances), kPlace) == S_OK &&
           nextOrLog(instances.get(), instance, kPlace) == S_OK;
}

bool isVendorEntry(IWbemClassObject* entry) {
    UniqueVariant name;
    return getProperty(entry, L"DsmName", name) == S_OK && stringOf(name.get()) == kDsmName;
}

bool readEntry(IWbemClassObject* entry, Registration& registration) {
    OutputDebugStringW(L"GetDSMCounters - found an instance");
    if (getOrLog(entry, L"DsmContext", registration.context, kCountersPlace) != S_OK) return false;
    HRESULT result = getProperty(entry, L"DsmCounters", registration.countersValue);
    if (result == S_OK) {
        result = toEmbeddedObject(registration.countersValue.get(), registration.counters);
    }
    return logFailure(result, kCountersPlace) == S_OK;
}

/// Finds the vendor's entry; entries whose name cannot be read are passed over.
bool findRegistration(Registration& registration) {
    if (!findInstance(registration.instance)) return false;
    UniqueVariant parameters;
    if (getOrLog(registration.instance.get(), L"DsmParameters", parameters,
                 L"GetDsmCounters::Get(DsmParameters)") != S_OK ||
        parameters.type() != (VT_ARRAY | VT_UNKNOWN)) {
        return false;
    }
    ObjectTable entries(static_cast<std::size_t>(boundsOf(parameters.get()).count()));
    entries.fill(parameters.get());
    for (LONG i = 0; i < entries.count(); ++i) {
        if (isVendorEntry(entries.at(i))) return readEntry(entries.at(i), registration);
    }
    ReportError(L"GetKorvadsmParameters:: dsmParametersObj is missing", DSM_WMI_PARSING_ERROR);
    return false;
}

void traceResult(const wchar_t* format, HRESULT result) {
    OutputDebugStringW(formatText(format, result).c_str());
}

/// Makes the method's input object from the class definition.
HRESULT spawnInput(const UniqueBstr& methodName, ComRef<IWbemClassObject>& input) {
    const UniqueBstr className(kMethodsClass);
    ComRef<IWbemClassObject> classObject;
    HRESULT result =
        gServices->GetObject(className.get(), 0, nullptr, classObject.receive(), nullptr);
    traceResult(L"ParseDsmParameters - gServices->GetObject returned 0x%x", result);
    if (result != S_OK) return result;
    if (!classObject) return E_POINTER;

    ComRef<IWbemClassObject> signature;
    result = classObject->GetMethod(methodName.get(), 0, signature.receive(), nullptr);
    if (result != S_OK) return result;
    if (!signature) return E_POINTER;
    result = signature->SpawnInstance(0, input.receive());
    return result == S_OK && !input ? E_POINTER : result;
}

/// The methods' instance belongs to the same driver object as the registration and bears its name;
/// without the name the bare class is addressed.
std::wstring methodsPath(IWbemClassObject* registration) {
    UniqueVariant name;
    if (getProperty(registration, L"InstanceName", name) != S_OK) return kMethodsClass;
    return instancePath(kMethodsClass, escapeBackslashes(stringOf(name.get())));
}

/// Calls SetDsmCounters. Puts that fail do not stop it.
HRESULT callSetDsmCounters(Registration& registration) {
    const UniqueBstr methodName(L"SetDsmCounters");
    ComRef<IWbemClassObject> input;
    HRESULT result = spawnInput(methodName, input);
    if (result != S_OK) return result;

    result = input->Put(L"DSMcontext", 0, &registration.context.get(), CIM_UINT64);
    traceResult(L"ParseDsmParameters - Put returned 0x%x", result);
    result = input->Put(L"DsmCounters", 0, &registration.countersValue.get(), 0);
    traceResult(L"ParseDsmParameters - Put returned 0x%x", result);

    const UniqueBstr path(methodsPath(registration.instance.get()).c_str());
    ComRef<IWbemClassObject> output;
    result = gServices->ExecMethod(path.get(), methodName.get(), 0, nullptr, input.get(),
                                   output.receive(), nullptr);
    traceResult(L"ParseDsmParameters - ExecMethod returned 0x%x", result);
    return result;
}

}  // namespace

DWORD readDsmCounters(_QUISTA_PROPERTY_SET& set) {
    Registration registration;
    if (!findRegistration(registration)) return DSM_WMI_PARSING_ERROR;
    OutputDebugStringW(L"GetDSMCounters is here");
    for (const Counter& counter : kCounters) {
        UniqueVariant value;
        static_cast<void>(getProperty(registration.counters.get(), counter.property, value));
        set.*counter.field = value.rawLong();
    }
    return DSM_SUCCESS;
}

DWORD writeDsmCounters(const _QUISTA_PROPERTY_SET& set) {
    Registration registration;
    if (!findRegistration(registration)) return DSM_WMI_PARSING_ERROR;
    OutputDebugStringW(
        formatText(L"SetODSMCounters - trying to set dsmparms, pdorp: %d, retryc: %d, retryi: %d",
                   set.PDORemovePeriod, set.RetryCount, set.RetryInterval)
            .c_str());
    // The entry's own object goes back with three members changed, so the others keep their values.
    for (const Counter& counter : kCounters) {
        static_cast<void>(
            putLong(registration.counters.get(), counter.property, set.*counter.field));
    }
    return static_cast<DWORD>(callSetDsmCounters(registration));
}

}  // namespace quista

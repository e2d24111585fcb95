#include "wmi/query.h"

#include "frame/bstr.h"
#include "frame/error_log.h"
#include "frame/session.h"

namespace quista {

namespace {

constexpr long kQueryFlags = WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY;
constexpr long kClassFlags = kQueryFlags | WBEM_FLAG_SHALLOW;

}  // namespace

HRESULT execQuery(IWbemServices* services, IEnumWbemClassObject** enumerator,
                  const std::wstring& query) {
    if (services == nullptr) return E_POINTER;
    const UniqueBstr language(L"WQL");
    const UniqueBstr text(query.c_str());
    return services->ExecQuery(language.get(), text.get(), kQueryFlags, nullptr, enumerator);
}

HRESULT DsmExecQuery(IEnumWbemClassObject** enumerator, const std::wstring& query) {
    return execQuery(gServices, enumerator, query);
}

HRESULT createInstanceEnum(const wchar_t* className, ComRef<IEnumWbemClassObject>& enumerator) {
    if (gServices == nullptr) return E_POINTER;
    const UniqueBstr name(className);
    return gServices->CreateInstanceEnum(name.get(), kClassFlags, nullptr, enumerator.receive());
}

HRESULT enumerateClass(const wchar_t* className, ComRef<IEnumWbemClassObject>& enumerator) {
    const HRESULT result = createInstanceEnum(className, enumerator);
    return result == S_OK && !enumerator ? E_POINTER : result;
}

HRESULT nextInstance(IEnumWbemClassObject* enumerator, ComRef<IWbemClassObject>& instance) {
    IWbemClassObject** out = instance.receive();
    if (enumerator == nullptr) return E_POINTER;
    ULONG returned = 0;
    const HRESULT result = enumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, out, &returned);
    return result == S_OK && !instance ? E_POINTER : result;
}

HRESULT nextOrLog(IEnumWbemClassObject* enumerator, ComRef<IWbemClassObject>& instance,
                  const wchar_t* place) {
    const HRESULT result = nextInstance(enumerator, instance);
    if (result != S_OK) writeLog(place, static_cast<DWORD>(result));
    return result;
}

}  // namespace quista

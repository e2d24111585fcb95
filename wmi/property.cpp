#include "wmi/property.h"

#include "frame/error_log.h"

namespace quista {

HRESULT getProperty(IWbemClassObject* object, const wchar_t* name, UniqueVariant& value,
                    CIMTYPE* type) {
    VARIANT* out = value.receive();
    return object != nullptr ? object->Get(name, 0, out, type, nullptr) : E_POINTER;
}

HRESULT getOrLog(IWbemClassObject* object, const wchar_t* name, UniqueVariant& value,
                 const wchar_t* place, CIMTYPE* type) {
    return logFailure(getProperty(object, name, value, type), place);
}

HRESULT putLong(IWbemClassObject* object, const wchar_t* name, unsigned long number) {
    if (object == nullptr) return E_POINTER;
    UniqueVariant value;
    value.get().vt = VT_I4;
    value.setLong(number);
    return object->Put(name, 0, &value.get(), 0);
}

HRESULT toEmbeddedObject(const VARIANT& value, ComRef<IWbemClassObject>& object) {
    if (value.vt != VT_UNKNOWN || value.punkVal == nullptr) return E_POINTER;
    const HRESULT result = value.punkVal->QueryInterface(
        IID_IWbemClassObject, reinterpret_cast<void**>(object.receive()));
    return result == S_OK && object ? S_OK : E_POINTER;
}

HRESULT getObjectOrLog(IWbemClassObject* object, const wchar_t* name,
                       ComRef<IWbemClassObject>& embedded, const wchar_t* place) {
    UniqueVariant value;
    HRESULT result = getProperty(object, name, value);
    if (result == S_OK) result = toEmbeddedObject(value.get(), embedded);
    return logFailure(result, place);
}

std::wstring stringOf(const VARIANT& value) {
    if (value.vt != VT_BSTR || value.bstrVal == nullptr) return {};
    return value.bstrVal;
}

}  // namespace quista

// The names of an object's properties: as an array, one by one, and where they come from.
#include <new>
#include <utility>

#include "simulator/com/class_object.h"
#include "simulator/com/variant_values.h"

namespace quista::simulator {
namespace {

/// Names that the client filters by a qualifier, by key or by reference.
bool passesFilter(const CimProperty* property, std::wstring_view qualifier, LONG flags) {
    if (property == nullptr) return qualifier.empty() && (flags & WBEM_FLAG_KEYS_ONLY) == 0;
    if ((flags & WBEM_FLAG_KEYS_ONLY) != 0 && !property->isKey()) return false;
    if ((flags & WBEM_FLAG_REFS_ONLY) != 0 && property->type.base != CimType::reference) {
        return false;
    }
    const bool hasQualifier = property->qualifiers.find(qualifier) != nullptr;
    switch (flags & WBEM_MASK_PRIMARY_CONDITION) {
        case WBEM_FLAG_ONLY_IF_TRUE:
            return hasQualifier;
        case WBEM_FLAG_ONLY_IF_FALSE:
            return !hasQualifier;
        default:
            return true;
    }
}

SAFEARRAY* makeTextArray(const std::vector<std::wstring>& texts) {
    OwnedVariant array;
    array->parray = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size()));
    if (array->parray == nullptr) throw std::bad_alloc();
    array->vt = VT_ARRAY | VT_BSTR;
    LONG index = 0;
    for (const std::wstring& text : texts) {
        OwnedVariant element;
        element->bstrVal = makeBstr(text);
        element->vt = VT_BSTR;
        if (FAILED(SafeArrayPutElement(array->parray, &index, element->bstrVal))) {
            throw std::bad_alloc();
        }
        ++index;
    }
    VARIANT released{};
    array.moveTo(released);
    return released.parray;
}

}  // namespace

HRESULT STDMETHODCALLTYPE ClassObject::GetNames(LPCWSTR qualifier, LONG flags, VARIANT*,
                                                SAFEARRAY** result) {
    clearOutput(result);
    return host()->run(call(L"GetNames"), [&] {
        if (result == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        return names(textOf(qualifier), flags, result);
    });
}

HRESULT ClassObject::names(std::wstring_view qualifier, LONG flags, SAFEARRAY** result) const {
    if ((flags & WBEM_MASK_PRIMARY_CONDITION) == WBEM_FLAG_ONLY_IF_IDENTICAL) {
        return wbem(WBEM_E_NOT_SUPPORTED);
    }
    std::vector<std::wstring> found;
    for (std::wstring& name : propertyNames(state_, flags & WBEM_MASK_CONDITION_ORIGIN)) {
        if (passesFilter(state_.definition->findProperty(name), qualifier, flags)) {
            found.push_back(std::move(name));
        }
    }
    *result = makeTextArray(found);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::BeginEnumeration(LONG flags) {
    return host()->run(call(L"BeginEnumeration"), [&] {
        if ((flags & ~WBEM_MASK_CONDITION_ORIGIN) != 0) return wbem(WBEM_E_INVALID_PARAMETER);
        if (properties_.isOpen) return wbem(WBEM_E_UNEXPECTED);
        properties_ = {true, propertyNames(state_, flags), 0};
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE ClassObject::Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type,
                                            LONG* flavor) {
    clearOutput(name);
    return host()->run(
        call(L"Next"),
        [&] {
            if (flags != 0) return wbem(WBEM_E_INVALID_PARAMETER);
            return nextProperty(name, value, type, flavor);
        },
        [&] {
            if (value != nullptr) value->vt = VT_NULL;
        });
}

HRESULT ClassObject::nextProperty(BSTR* name, VARIANT* value, CIMTYPE* type, LONG* flavor) {
    if (!properties_.isOpen) return wbem(WBEM_E_UNEXPECTED);
    if (properties_.position == properties_.names.size()) return wbem(WBEM_S_NO_MORE_DATA);
    const std::wstring& current = properties_.names[properties_.position];
    BSTR text = name != nullptr ? makeBstr(current) : nullptr;
    const HRESULT result = get(current, value, type, flavor);
    if (FAILED(result)) {
        SysFreeString(text);
        return result;
    }
    if (name != nullptr) *name = text;
    ++properties_.position;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::EndEnumeration() {
    return host()->run(call(L"EndEnumeration"), [&] {
        properties_ = {};
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE ClassObject::GetPropertyOrigin(LPCWSTR name, BSTR* className) {
    clearOutput(className);
    return host()->run(propertyCall(L"GetPropertyOrigin", textOf(name)), [&] {
        if (name == nullptr || className == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        const CimProperty* property = state_.definition->findProperty(name);
        if (property == nullptr) return wbem(WBEM_E_NOT_FOUND);
        *className = makeBstr(property->declaredIn);
        return S_OK;
    });
}

}  // namespace quista::simulator

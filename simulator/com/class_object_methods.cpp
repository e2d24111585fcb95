// The methods of a class object and their signatures.
#include <utility>

#include "simulator/com/class_object.h"

namespace quista::simulator {

HRESULT STDMETHODCALLTYPE ClassObject::GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in,
                                                 IWbemClassObject** out) {
    clearOutput(in);
    clearOutput(out);
    return host()->run(propertyCall(L"GetMethod", textOf(name)), [&] {
        if (name == nullptr || flags != 0) return wbem(WBEM_E_INVALID_PARAMETER);
        if (state_.isInstance()) return wbem(WBEM_E_ILLEGAL_OPERATION);
        const CimMethod* method = state_.definition->findMethod(name);
        if (method == nullptr) return wbem(WBEM_E_NOT_FOUND);
        deliverSignatures(*method, in, out);
        return S_OK;
    });
}

void ClassObject::deliverSignatures(const CimMethod& method, IWbemClassObject** in,
                                    IWbemClassObject** out) {
    const auto signature = [&](CimClassPtr parameters) -> ComOwner<ClassObject> {
        if (parameters == nullptr) return nullptr;
        return makeClassObject(host(), stateOfClass(std::move(parameters), state_.nameSpace));
    };
    ComOwner<ClassObject> inParameters = in != nullptr ? signature(inSignature(method)) : nullptr;
    ComOwner<ClassObject> outParameters =
        out != nullptr ? signature(outSignature(method)) : nullptr;
    deliver(std::move(inParameters), in);
    deliver(std::move(outParameters), out);
}

HRESULT STDMETHODCALLTYPE ClassObject::BeginMethodEnumeration(LONG flags) {
    return host()->run(call(L"BeginMethodEnumeration"), [&] {
        if (flags != 0) return wbem(WBEM_E_INVALID_PARAMETER);
        if (state_.isInstance()) return wbem(WBEM_E_ILLEGAL_OPERATION);
        if (methods_.isOpen) return wbem(WBEM_E_UNEXPECTED);
        methods_ = {true, {}, 0};
        for (const CimMethod& method : state_.definition->methods) {
            methods_.names.push_back(method.name);
        }
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE ClassObject::NextMethod(LONG flags, BSTR* name, IWbemClassObject** in,
                                                  IWbemClassObject** out) {
    clearOutput(name);
    clearOutput(in);
    clearOutput(out);
    return host()->run(call(L"NextMethod"), [&] {
        if (flags != 0) return wbem(WBEM_E_INVALID_PARAMETER);
        return nextMethod(name, in, out);
    });
}

HRESULT ClassObject::nextMethod(BSTR* name, IWbemClassObject** in, IWbemClassObject** out) {
    if (!methods_.isOpen) return wbem(WBEM_E_UNEXPECTED);
    if (methods_.position == methods_.names.size()) return wbem(WBEM_S_NO_MORE_DATA);
    const CimMethod& method = *state_.definition->findMethod(methods_.names[methods_.position]);
    deliverSignatures(method, in, out);
    if (name != nullptr) *name = makeBstr(method.name);
    ++methods_.position;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::EndMethodEnumeration() {
    return host()->run(call(L"EndMethodEnumeration"), [&] {
        methods_ = {};
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE ClassObject::GetMethodOrigin(LPCWSTR name, BSTR* className) {
    clearOutput(className);
    return host()->run(propertyCall(L"GetMethodOrigin", textOf(name)), [&] {
        if (name == nullptr || className == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        const CimMethod* method = state_.definition->findMethod(name);
        if (method == nullptr) return wbem(WBEM_E_NOT_FOUND);
        *className = makeBstr(method->declaredIn);
        return S_OK;
    });
}

}  // namespace quista::simulator

#include "simulator/com/class_object.h"

#include <utility>

#include "simulator/com/embedded_objects.h"
#include "simulator/com/variant_values.h"
#include "simulator/mof/mof_writer.h"

namespace quista::simulator {
namespace {

/// Known to the simulator alone: how it finds its own object behind a client's interface pointer.
constexpr GUID kOwnObjectId = {
    0x5f0c1b62, 0x7a3e, 0x4d8b, {0x9c, 0x11, 0x2e, 0x60, 0x41, 0xd7, 0xa8, 0x35}};

}  // namespace

ClassObject::ClassObject(std::shared_ptr<Host> host, ObjectState state)
    : ClassObjectBase(std::move(host)), state_(std::move(state)) {}

ComOwner<ClassObject> ClassObject::behind(IUnknown* object) {
    void* own = nullptr;
    if (object == nullptr || FAILED(object->QueryInterface(kOwnObjectId, &own))) return nullptr;
    return ComOwner<ClassObject>(static_cast<ClassObject*>(own));
}

HRESULT STDMETHODCALLTYPE ClassObject::QueryInterface(REFIID iid, void** object) {
    if (iid != kOwnObjectId || object == nullptr) return ComObject::QueryInterface(iid, object);
    AddRef();
    *object = this;
    return S_OK;
}

Call ClassObject::propertyCall(const wchar_t* method, std::wstring_view property) const {
    Call made = call(method);
    made.property = property;
    return made;
}

HRESULT STDMETHODCALLTYPE ClassObject::Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                           LONG* flavor) {
    return host()->run(
        propertyCall(L"Get", textOf(name)),
        [&] {
            if (name == nullptr || flags != 0) return wbem(WBEM_E_INVALID_PARAMETER);
            return get(name, value, type, flavor);
        },
        [&] {
            if (value != nullptr) value->vt = VT_NULL;
        });
}

HRESULT ClassObject::get(std::wstring_view name, VARIANT* value, CIMTYPE* type, LONG* flavor) {
    const std::optional<PropertyReading> reading = readProperty(state_, name);
    if (!reading) return wbem(WBEM_E_NOT_FOUND);
    const VARIANT* instead = host()->faults.overrideFor(callClass(), name);
    if (value != nullptr) {
        OwnedVariant delivered;
        if (instead != nullptr) {
            delivered = OwnedVariant::copyOf(*instead);
        } else {
            toVariant(host(), reading->type, reading->value, *delivered);
        }
        delivered.moveTo(*value);
    }
    if (type != nullptr) *type = cimTypeNumber(reading->type);
    if (flavor != nullptr) *flavor = reading->flavor;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) {
    Call made = propertyCall(L"Put", textOf(name));
    made.valueType = value != nullptr ? value->vt : static_cast<VARTYPE>(VT_NULL);
    made.cimType = type;
    return host()->run(made, [&] {
        if (name == nullptr || flags != 0) return wbem(WBEM_E_INVALID_PARAMETER);
        return put(name, value, type);
    });
}

HRESULT ClassObject::put(std::wstring_view name, const VARIANT* value, CIMTYPE type) {
    if (!state_.isInstance()) return wbem(WBEM_E_NOT_SUPPORTED);
    if (isSystemName(name)) return wbem(WBEM_E_READ_ONLY);
    const CimProperty* property = state_.definition->findProperty(name);
    if (property == nullptr) return wbem(WBEM_E_NOT_FOUND);
    if (state_.isStored && property->isKey()) return wbem(WBEM_E_READ_ONLY);
    if (type != 0 && type != cimTypeNumber(property->type)) return wbem(WBEM_E_TYPE_MISMATCH);

    std::optional<CimValue> converted = CimValue();
    if (value != nullptr) converted = fromVariant(*value, property->type);
    if (!converted) return wbem(WBEM_E_TYPE_MISMATCH);
    CimInstance changed = *state_.instance;
    if (changed.set(name, std::move(*converted)) != CimInstance::SetResult::done) {
        return wbem(WBEM_E_TYPE_MISMATCH);
    }
    state_.instance = std::make_shared<const CimInstance>(std::move(changed));
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::Delete(LPCWSTR name) {
    return host()->run(propertyCall(L"Delete", textOf(name)), [&] {
        if (name == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        return reset(name);
    });
}

/// An instance cannot lose a property: it goes back to the default of its class.
HRESULT ClassObject::reset(std::wstring_view name) {
    if (!state_.isInstance()) return wbem(WBEM_E_NOT_SUPPORTED);
    if (isSystemName(name)) return wbem(WBEM_E_SYSTEM_PROPERTY);
    const CimProperty* property = state_.definition->findProperty(name);
    if (property == nullptr) return wbem(WBEM_E_NOT_FOUND);
    if (state_.isStored && property->isKey()) return wbem(WBEM_E_READ_ONLY);
    CimInstance changed = *state_.instance;
    changed.set(name, property->defaultValue);
    state_.instance = std::make_shared<const CimInstance>(std::move(changed));
    return wbem(WBEM_S_RESET_TO_DEFAULT);
}

HRESULT STDMETHODCALLTYPE ClassObject::Clone(IWbemClassObject** copy) {
    clearOutput(copy);
    return host()->run(call(L"Clone"), [&] {
        if (copy == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        deliver(makeClassObject(host(), state_), copy);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE ClassObject::GetObjectText(LONG flags, BSTR* text) {
    return host()->run(call(L"GetObjectText"), [&] {
        // WMI insists on a text pointer that holds nothing yet.
        if (text == nullptr || *text != nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        if ((flags & ~WBEM_FLAG_NO_FLAVORS) != 0) return wbem(WBEM_E_INVALID_PARAMETER);
        *text = makeBstr(state_.isInstance() ? writeMof(*state_.instance)
                                             : writeMof(*state_.definition));
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE ClassObject::SpawnInstance(LONG flags, IWbemClassObject** instance) {
    return host()->run(
        call(L"SpawnInstance"),
        [&] {
            if (instance == nullptr || flags != 0) return wbem(WBEM_E_INVALID_PARAMETER);
            return spawn(instance);
        },
        [&] { clearOutput(instance); });
}

HRESULT ClassObject::spawn(IWbemClassObject** instance) {
    if (state_.definition->name.empty() || state_.definition->isAbstract()) {
        return wbem(WBEM_E_INCOMPLETE_CLASS);
    }
    CimInstance spawned(state_.definition);
    // Spawned from an instance the properties are empty, without the defaults of the class.
    if (state_.isInstance()) {
        for (const CimProperty& property : state_.definition->properties) {
            spawned.set(property.name, CimValue());
        }
    }
    ObjectState state = state_;
    state.instance = std::make_shared<const CimInstance>(std::move(spawned));
    state.isStored = false;
    deliver(makeClassObject(host(), std::move(state)), instance);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::CompareTo(LONG, IWbemClassObject* other) {
    return host()->run(call(L"CompareTo"), [&] {
        const ComOwner<ClassObject> theirs = behind(other);
        if (theirs == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        const ObjectState& state = theirs->state_;
        if (state.isInstance() != state_.isInstance()) return wbem(WBEM_S_DIFFERENT);
        const bool same = state_.isInstance() ? *state_.instance == *state.instance
                                              : *state_.definition == *state.definition;
        return same ? wbem(WBEM_S_SAME) : wbem(WBEM_S_DIFFERENT);
    });
}

HRESULT STDMETHODCALLTYPE ClassObject::InheritsFrom(LPCWSTR ancestor) {
    return host()->run(call(L"InheritsFrom"), [&] {
        if (ancestor == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        return state_.definition->isA(ancestor) ? S_OK : wbem(WBEM_S_FALSE);
    });
}

ComOwner<ClassObject> makeClassObject(const std::shared_ptr<Host>& host, ObjectState state) {
    return ComOwner<ClassObject>(new ClassObject(host, std::move(state)));
}

ComOwner<IUnknown> makeEmbeddedObject(const std::shared_ptr<Host>& host, CimInstancePtr instance) {
    ObjectState state = stateOfInstance(std::move(instance), {});
    state.isStored = false;
    return makeClassObject(host, std::move(state));
}

CimInstancePtr instanceBehind(IUnknown* object) {
    const ComOwner<ClassObject> own = ClassObject::behind(object);
    return own == nullptr ? nullptr : own->state().instance;
}

}  // namespace quista::simulator

// IWbemClassObject: classes, instances, embedded objects and method parameters.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/com/class_object_base.h"
#include "simulator/com/object_state.h"

namespace quista::simulator {

class ClassObject final : public ClassObjectBase {
  public:
    ClassObject(std::shared_ptr<Host> host, ObjectState state);

    /// The simulator's object behind an interface; empty when it is none of its.
    static ComOwner<ClassObject> behind(IUnknown* object);
    const ObjectState& state() const { return state_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                  LONG* flavor) override;
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override;
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR name) override;
    HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR qualifier, LONG flags, VARIANT* qualifierValue,
                                       SAFEARRAY** names) override;
    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) override;
    HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type,
                                   LONG* flavor) override;
    HRESULT STDMETHODCALLTYPE EndEnumeration() override;
    HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject** copy) override;
    HRESULT STDMETHODCALLTYPE GetObjectText(LONG flags, BSTR* text) override;
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** instance) override;
    HRESULT STDMETHODCALLTYPE CompareTo(LONG flags, IWbemClassObject* other) override;
    HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR name, BSTR* className) override;
    HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR ancestor) override;
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in,
                                        IWbemClassObject** out) override;
    HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG flags) override;
    HRESULT STDMETHODCALLTYPE NextMethod(LONG flags, BSTR* name, IWbemClassObject** in,
                                         IWbemClassObject** out) override;
    HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override;
    HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR name, BSTR* className) override;

  private:
    /// The walk over names that a pair of Begin and End encloses.
    struct Walk {
        bool isOpen = false;
        std::vector<std::wstring> names;
        std::size_t position = 0;
    };

    ~ClassObject() override = default;

    std::wstring_view callClass() const override { return state_.definition->name; }
    Call propertyCall(const wchar_t* method, std::wstring_view property) const;

    HRESULT get(std::wstring_view name, VARIANT* value, CIMTYPE* type, LONG* flavor);
    HRESULT put(std::wstring_view name, const VARIANT* value, CIMTYPE type);
    HRESULT reset(std::wstring_view name);
    HRESULT names(std::wstring_view qualifier, LONG flags, SAFEARRAY** names) const;
    HRESULT nextProperty(BSTR* name, VARIANT* value, CIMTYPE* type, LONG* flavor);
    HRESULT spawn(IWbemClassObject** instance);
    HRESULT nextMethod(BSTR* name, IWbemClassObject** in, IWbemClassObject** out);
    void deliverSignatures(const CimMethod& method, IWbemClassObject** in, IWbemClassObject** out);

    ObjectState state_;
    Walk properties_;
    Walk methods_;
};

ComOwner<ClassObject> makeClassObject(const std::shared_ptr<Host>& host, ObjectState state);

}  // namespace quista::simulator

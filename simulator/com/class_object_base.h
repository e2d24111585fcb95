// The operations of IWbemClassObject that the simulated host does not offer: qualifiers, and
// changing class definitions.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include "simulator/com/com_object.h"

namespace quista::simulator {

class ClassObjectBase : public ComObject<IWbemClassObject, ObjectKind::kObject> {
  public:
    HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet** qualifiers) override {
        clearOutput(qualifiers);
        return notImplemented(L"GetQualifierSet");
    }
    HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR,
                                                      IWbemQualifierSet** qualifiers) override {
        clearOutput(qualifiers);
        return notImplemented(L"GetPropertyQualifierSet");
    }
    HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject** derived) override {
        clearOutput(derived);
        return notImplemented(L"SpawnDerivedClass");
    }
    HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*,
                                        IWbemClassObject*) override {
        return notImplemented(L"PutMethod");
    }
    HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override {
        return notImplemented(L"DeleteMethod");
    }
    HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR,
                                                    IWbemQualifierSet** qualifiers) override {
        clearOutput(qualifiers);
        return notImplemented(L"GetMethodQualifierSet");
    }

  protected:
    using ComObject::ComObject;
};

}  // namespace quista::simulator

// A WMI object of nothing but properties, for values and failures that no host would deliver.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/wmi/value.h"

namespace quista::test {

inline constexpr HRESULT kNotFound = static_cast<HRESULT>(WBEM_E_NOT_FOUND);
inline constexpr HRESULT kFailed = static_cast<HRESULT>(WBEM_E_FAILED);

// COM interfaces have no virtual destructor; these objects are destroyed as what they are.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Lives on the test's stack and counts the references that others hold; one that is left at the
/// end is a failure of the test, so objects stand before those that hold them. Get is all it can
/// do.
class FakeObject final : public IWbemClassObject {
  public:
    FakeObject() = default;
    ~FakeObject();
    FakeObject(const FakeObject&) = delete;
    FakeObject& operator=(const FakeObject&) = delete;

    /// Get delivers copies of the value, and with them `result`.
    FakeObject& set(const std::wstring& property, Value value, HRESULT result = S_OK);
    FakeObject& text(const std::wstring& property, const std::wstring& text) {
        return set(property, Value::text(text));
    }
    FakeObject& number(const std::wstring& property, LONG number) {
        return set(property, Value::bits(VT_I4, number));
    }
    /// Get fails and leaves its output alone.
    FakeObject& fail(const std::wstring& property, HRESULT result);
    /// Called at every Get, with the property's name.
    void onGet(std::function<void(const std::wstring&)> action) { onGet_ = std::move(action); }

    /// The names that were read, in order.
    const std::vector<std::wstring>& reads() const { return reads_; }
    /// References that others hold.
    ULONG references() const { return references_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override { return --references_; }
    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                  LONG* flavor) override;

    HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR, LONG, VARIANT*, CIMTYPE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EndEnumeration() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject**,
                                        IWbemClassObject**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*,
                                        IWbemClassObject*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**,
                                         IWbemClassObject**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }

  private:
    struct Answer {
        HRESULT result;
        Value value;
    };

    std::map<std::wstring, Answer> answers_;
    std::vector<std::wstring> reads_;
    std::function<void(const std::wstring&)> onGet_;
    ULONG references_ = 0;
};

/// An object of some other kind: it knows no interface of WMI.
class Stranger final : public IUnknown {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override { return --references_; }

    ULONG references() const { return references_; }

  private:
    ULONG references_ = 0;
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

}  // namespace quista::test

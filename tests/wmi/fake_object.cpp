#include "tests/wmi/fake_object.h"

#include <gtest/gtest.h>

namespace quista::test {

FakeObject::~FakeObject() {
    EXPECT_EQ(references_, 0u) << "a reference is left";
}

FakeObject& FakeObject::set(const std::wstring& property, Value value, HRESULT result) {
    answers_.insert_or_assign(property, Answer{result, std::move(value)});
    return *this;
}

FakeObject& FakeObject::fail(const std::wstring& property, HRESULT result) {
    return set(property, Value(), result);
}

HRESULT STDMETHODCALLTYPE FakeObject::QueryInterface(REFIID iid, void** object) {
    const bool known = iid == IID_IUnknown || iid == IID_IWbemClassObject;
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE FakeObject::Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                          LONG* flavor) {
    EXPECT_EQ(flags, 0);
    EXPECT_EQ(type, nullptr);
    EXPECT_EQ(flavor, nullptr);
    reads_.emplace_back(name);
    if (onGet_) onGet_(name);
    const auto answer = answers_.find(name);
    if (answer == answers_.end()) return kNotFound;
    VARIANT& source = answer->second.value.get();
    if (source.vt != VT_EMPTY) {
        // The output is initialised, not cleared, as WMI does; a plain copy keeps every bit of a
        // value that owns nothing.
        *value = VARIANT{};
        if (VariantCopy(value, &source) != S_OK) *value = source;
    }
    return answer->second.result;
}

}  // namespace quista::test

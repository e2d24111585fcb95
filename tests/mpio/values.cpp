#include "tests/mpio/values.h"

#include <windows.h>

#include <objbase.h>
#include <wbemcli.h>

#include <gtest/gtest.h>
#include <utility>

namespace quista::test {

namespace {

/// A BSTR for the duration of a call.
class CallText {
  public:
    explicit CallText(const std::wstring& text) : text_(SysAllocString(text.c_str())) {}
    ~CallText() { SysFreeString(text_); }
    CallText(const CallText&) = delete;
    CallText& operator=(const CallText&) = delete;

    BSTR get() const { return text_; }

  private:
    BSTR text_;
};

template <typename Interface>
void releaseIfAny(Interface* object) {
    if (object != nullptr) object->Release();
}

IWbemServices* connectToWmi() {
    IWbemLocator* locator = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(&locator)),
              S_OK);
    if (locator == nullptr) return nullptr;
    IWbemServices* services = nullptr;
    const CallText nameSpace(L"root\\wmi");
    EXPECT_EQ(locator->ConnectServer(nameSpace.get(), nullptr, nullptr, nullptr, 0, nullptr,
                                     nullptr, &services),
              S_OK);
    locator->Release();
    return services;
}

IWbemClassObject* firstInstance(const std::wstring& className) {
    IWbemServices* services = connectToWmi();
    if (services == nullptr) return nullptr;
    IEnumWbemClassObject* instances = nullptr;
    IWbemClassObject* instance = nullptr;
    const CallText name(className);
    EXPECT_EQ(services->CreateInstanceEnum(name.get(), 0, nullptr, &instances), S_OK);
    if (instances != nullptr) {
        ULONG returned = 0;
        EXPECT_EQ(instances->Next(static_cast<LONG>(WBEM_INFINITE), 1, &instance, &returned), S_OK);
    }
    releaseIfAny(instances);
    services->Release();
    return instance;
}

}  // namespace

Value::Value(Value&& other) noexcept : value_(std::exchange(other.value_, VARIANT{})) {}

Value& Value::operator=(Value&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
}

Value::~Value() {
    VariantClear(&value_);
}

Value Value::ofProperty(const std::wstring& className, const std::wstring& property) {
    Value value;
    IWbemClassObject* instance = firstInstance(className);
    if (instance == nullptr) return value;
    EXPECT_EQ(instance->Get(property.c_str(), 0, &value.value_, nullptr, nullptr), S_OK);
    instance->Release();
    return value;
}

Value Value::null() {
    Value value;
    value.value_.vt = VT_NULL;
    return value;
}

Value Value::number(LONG number) {
    Value value;
    value.value_.vt = VT_I4;
    value.value_.lVal = number;
    return value;
}

Value Value::byte(BYTE byte) {
    Value value;
    value.value_.vt = VT_UI1;
    value.value_.bVal = byte;
    return value;
}

Value Value::boolean(bool truth) {
    Value value;
    value.value_.vt = VT_BOOL;
    value.value_.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
    return value;
}

Value Value::text(const std::wstring& text) {
    Value value;
    value.value_.vt = VT_BSTR;
    value.value_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return value;
}

Value Value::object(IUnknown* object) {
    Value value;
    value.value_.vt = VT_UNKNOWN;
    value.value_.punkVal = object;
    if (object != nullptr) object->AddRef();
    return value;
}

Value Value::objects(const std::vector<IUnknown*>& objects, LONG lowerBound) {
    SAFEARRAYBOUND bound{static_cast<ULONG>(objects.size()), lowerBound};
    Value value;
    value.value_.vt = VT_ARRAY | VT_UNKNOWN;
    value.value_.parray = SafeArrayCreate(VT_UNKNOWN, 1, &bound);
    for (LONG i = 0; i < static_cast<LONG>(objects.size()); ++i) {
        LONG index = lowerBound + i;
        EXPECT_EQ(
            SafeArrayPutElement(value.value_.parray, &index, objects[static_cast<std::size_t>(i)]),
            S_OK);
    }
    return value;
}

Value Value::characters(const std::vector<SHORT>& characters) {
    Value value = array(VT_I2, static_cast<ULONG>(characters.size()));
    for (LONG index = 0; index < static_cast<LONG>(characters.size()); ++index) {
        SHORT character = characters[static_cast<std::size_t>(index)];
        EXPECT_EQ(SafeArrayPutElement(value.value_.parray, &index, &character), S_OK);
    }
    return value;
}

Value Value::array(VARTYPE elementType, ULONG elements, LONG lowerBound) {
    Value value;
    value.value_.vt = static_cast<VARTYPE>(VT_ARRAY | elementType);
    value.value_.parray = SafeArrayCreateVector(elementType, lowerBound, elements);
    EXPECT_NE(value.value_.parray, nullptr);
    return value;
}

IUnknown* elementOf(const Value& objects, LONG index) {
    IUnknown* element = nullptr;
    EXPECT_EQ(SafeArrayGetElement(objects.get().parray, &index, &element), S_OK);
    releaseIfAny(element);
    return element;
}

IUnknown* foreignObject() {
    IMalloc* allocator = nullptr;
    EXPECT_EQ(CoGetMalloc(1, &allocator), S_OK);
    return allocator;
}

}  // namespace quista::test

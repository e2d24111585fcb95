#include "simulator/standins/host_reader.h"

#include <oleauto.h>

#include "frame/bstr.h"
#include "wmi/variant.h"

namespace quista::simulator {

namespace {

bool read(IWbemClassObject* instance, const wchar_t* property, VARTYPE type, UniqueVariant& value) {
    return instance->Get(property, 0, value.receive(), nullptr, nullptr) == S_OK &&
           value.type() == type;
}

/// The elements of a one-dimensional array.
template <typename Element, typename Result>
std::vector<Result> elementsOf(const UniqueVariant& value) {
    SAFEARRAY* array = value.get().parray;
    LONG upper = -1;
    void* data = nullptr;
    std::vector<Result> result;
    if (SafeArrayGetUBound(array, 1, &upper) != S_OK || upper < 0) return result;
    if (SafeArrayAccessData(array, &data) != S_OK) return result;
    const auto* elements = static_cast<const Element*>(data);
    result.assign(elements, elements + upper + 1);
    SafeArrayUnaccessData(array);
    return result;
}

}  // namespace

HostReader::HostReader() {
    ComRef<IWbemLocator> locator;
    const HRESULT created =
        CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                         reinterpret_cast<void**>(locator.receive()));
    if (created != S_OK) return;
    const UniqueBstr nameSpace(L"root\\simulator");
    locator->ConnectServer(nameSpace.get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                           services_.receive());
}

void HostReader::visit(const wchar_t* className,
                       const std::function<void(IWbemClassObject*)>& visitor) const {
    if (!services_) return;
    const UniqueBstr name(className);
    ComRef<IEnumWbemClassObject> instances;
    if (services_->CreateInstanceEnum(name.get(), 0, nullptr, instances.receive()) != S_OK) return;
    for (;;) {
        ComRef<IWbemClassObject> instance;
        ULONG returned = 0;
        const HRESULT next =
            instances->Next(static_cast<LONG>(WBEM_INFINITE), 1, instance.receive(), &returned);
        if (next != S_OK || !instance) return;
        visitor(instance.get());
    }
}

std::wstring readText(IWbemClassObject* instance, const wchar_t* property) {
    UniqueVariant value;
    if (!read(instance, property, VT_BSTR, value)) return {};
    return value.get().bstrVal;
}

std::uint32_t readNumber(IWbemClassObject* instance, const wchar_t* property) {
    UniqueVariant value;
    return read(instance, property, VT_I4, value) ? value.rawLong() : 0;
}

std::vector<std::uint8_t> readBytes(IWbemClassObject* instance, const wchar_t* property) {
    UniqueVariant value;
    if (!read(instance, property, VT_ARRAY | VT_UI1, value)) return {};
    return elementsOf<std::uint8_t, std::uint8_t>(value);
}

std::vector<std::wstring> readTexts(IWbemClassObject* instance, const wchar_t* property) {
    UniqueVariant value;
    if (!read(instance, property, VT_ARRAY | VT_BSTR, value)) return {};
    return elementsOf<BSTR, std::wstring>(value);
}

std::string narrow(const std::wstring& text) {
    std::string bytes(text.size() * 2, '\0');
    const int length =
        WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

}  // namespace quista::simulator

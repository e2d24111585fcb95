#include "wmi/addresses.h"

#include <cstdlib>
#include <cwchar>
#include <iterator>

#include "frame/console.h"
#include "wmi/property.h"
#include "wmi/safe_arrays.h"
#include "wmi/text_field.h"
#include "wmi/variant_text.h"

namespace quista {

namespace {

enum AddressType : unsigned long { kTextAddress = 0, kIPv4Address = 1, kIPv6Address = 2 };

constexpr std::size_t kAddressBytes = 1024;
constexpr LONG kIPv6Bytes = 16;

/// A zeroed buffer for an address, or null without memory.
UniqueText newAddressBuffer() {
    return UniqueText(static_cast<wchar_t*>(std::calloc(kAddressBytes, 1)));
}

void storeAddress(wchar_t* buffer, const std::wstring& text) {
    if (buffer != nullptr) copyTerminated(buffer, kAddressBytes / sizeof(wchar_t), text.c_str());
}

HRESULT textAddress(IWbemClassObject* address, wchar_t** text) {
    UniqueVariant value;
    const HRESULT result = getProperty(address, L"TextAddress", value);
    VariantToText(&value.get(), text);
    return result;
}

HRESULT ipv4Address(IWbemClassObject* address, wchar_t** text) {
    UniqueText buffer = newAddressBuffer();
    UniqueVariant value;
    const HRESULT result = getProperty(address, L"IpV4Address", value);
    const std::uint32_t bits = value.rawLong();
    storeAddress(buffer.get(), formatText(L"%d.%d.%d.%d", bits & 0xFF, bits >> 8 & 0xFF,
                                          bits >> 16 & 0xFF, bits >> 24));
    *text = buffer.release();
    return result;
}

HRESULT ipv6Address(IWbemClassObject* address, wchar_t** text) {
    UniqueText buffer = newAddressBuffer();
    UniqueVariant value;
    const HRESULT result = getProperty(address, L"IpV6Address", value);
    if (result == S_OK && value.type() == (VT_ARRAY | VT_UI1)) {
        unsigned char bytes[kIPv6Bytes] = {};
        SafeArrayToBytes(value.get(), bytes, kIPv6Bytes);
        std::wstring formatted;
        FormatIpV6Text(formatted, bytes);
        storeAddress(buffer.get(), formatted);
    }
    *text = buffer.release();
    return result;
}

HRESULT readPortal(IWbemClassObject* portal, _KORVADSM_ISCSI_PORTAL& record) {
    UniqueVariant port;
    UniqueVariant ipAddress;
    UniqueVariant type;
    ComRef<IWbemClassObject> address;
    wchar_t* text = nullptr;

    HRESULT result = getProperty(portal, L"Port", port);
    result |= getProperty(portal, L"IPAddr", ipAddress);
    if (result == S_OK) result = toEmbeddedObject(ipAddress.get(), address);
    if (result == S_OK) result = getProperty(address.get(), L"Type", type);
    if (result == S_OK) result = GetAddressText(address.get(), type.rawLong(), &text);
    const UniqueText owned(text);

    if (result == S_OK && text != nullptr) {
        copyTerminated(record.Address, std::size(record.Address), text);
        record.Port = port.rawLong();
    } else {
        record.Valid = 0;
    }
    return result;
}

}  // namespace

void FormatIpV6Text(std::wstring& text, const unsigned char* address) {
    text.clear();
    for (int i = 0; i < kIPv6Bytes; ++i) {
        text += formatText(L"%02x", address[i]);
        if (i % 2 == 1 && i < kIPv6Bytes - 1) text += L':';
    }
}

HRESULT GetAddressText(IWbemClassObject* address, unsigned long type, wchar_t** text) {
    switch (type) {
        case kTextAddress:
            return textAddress(address, text);
        case kIPv4Address:
            return ipv4Address(address, text);
        case kIPv6Address:
            return ipv6Address(address, text);
        default:
            return S_FALSE;
    }
}

HRESULT GetPortalAddresses(IWbemClassObject* const* portals, _KORVADSM_ISCSI_PORTAL* records,
                           unsigned long count) {
    HRESULT result = S_OK;
    for (unsigned long i = 0; i < count; ++i) result = readPortal(portals[i], records[i]);
    return result;
}

}  // namespace quista

#include "wmi/readers.h"

#include <algorithm>
#include <cwchar>

#include "frame/bstr.h"
#include "frame/error_log.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/variant_text.h"

namespace quista {

namespace {

// Kept: both number readers report under the byte reader's name, and with this wording.
constexpr const wchar_t* kNumberReaderPlace =
    L"DsmGetPathInfoBval reported and error while retrieving ";
constexpr const wchar_t* kTextReaderPlace =
    L"DsmGetWbemInfoGetStringVal reported an error while retrieving ";

struct NamedRead {
    bool hasName;  ///< false when there was no memory for the name
    HRESULT result;
};

/// Gets a property under a BSTR of its name and logs a failure under `place` and the name.
NamedRead readNamed(IWbemClassObject* object, const std::wstring& name, UniqueVariant& value,
                    const wchar_t* place) {
    const UniqueBstr bstr(name.c_str());
    const HRESULT result =
        bstr ? getProperty(object, bstr.get(), value) : static_cast<HRESULT>(DSM_NO_MEMORY);
    if (result != S_OK) logFailure(result, (place + name).c_str());
    return {static_cast<bool>(bstr), result};
}

}  // namespace

std::uint8_t DsmGetPathInfoBval(IWbemClassObject* object, std::wstring name) {
    UniqueVariant value;
    const NamedRead read = readNamed(object, name, value, kNumberReaderPlace);
    return read.hasName ? value.rawByte() : std::uint8_t{0xFF};
}

std::uint32_t DsmGetPathInfoLval(IWbemClassObject* object, std::wstring name) {
    UniqueVariant value;
    const NamedRead read = readNamed(object, name, value, kNumberReaderPlace);
    return read.hasName ? value.rawLong() : 0xFFFFu;
}

HRESULT DsmGetWbemInfoGetStringVal(IWbemClassObject* object, std::wstring name,
                                   wchar_t* destination, std::uint32_t maximum) {
    UniqueVariant value;
    const HRESULT result = readNamed(object, name, value, kTextReaderPlace).result;
    if (result != S_OK) return result;

    const UniqueText text = bareText(value);
    if (text != nullptr) {
        const std::size_t length = std::min<std::size_t>(std::wcslen(text.get()), maximum);
        std::wmemcpy(destination, text.get(), length);
    }
    // Kept: a string value is not freed.
    if (value.type() == VT_BSTR) value.keepOnPurpose();
    return result;
}

DWORD DsmGetPathScsiAddress(IWbemClassObject* address, _KORVADSM_PATHINFO* path) {
    path->PortNumber = DsmGetPathInfoBval(address, L"PortNumber");
    path->ScsiPathId = DsmGetPathInfoBval(address, L"ScsiPathId");
    path->TargetId = DsmGetPathInfoBval(address, L"TargetId");
    path->Lun = DsmGetPathInfoBval(address, L"Lun");
    return DSM_SUCCESS;
}

}  // namespace quista

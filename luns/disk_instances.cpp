#include "luns/disk_instances.h"

#include <cstdlib>
#include <cwchar>
#include <iterator>

#include "wmi/property.h"

namespace quista {

namespace {

constexpr wchar_t kTagPrefix[] = L"PHYSICALDRIVE";

bool isText(const UniqueVariant& value) {
    return value.type() == VT_BSTR && value.get().bstrVal != nullptr;
}

}  // namespace

HRESULT ParseWin32_PhysicalMedia(IWbemClassObject* media, DiskInstance& disk) {
    UniqueVariant serial;
    HRESULT result =
        getOrLog(media, L"SerialNumber", serial, L"ParseWin32_PhysicalMedia::Get(SerialNumber)");
    if (result != S_OK) return result;
    UniqueVariant tag;
    // Kept: the tag reports under the disk drive's parser.
    result = getOrLog(media, L"Tag", tag, L"ParseWin32_DiskDrive::Get(Tag)");
    if (result != S_OK) return result;

    disk.serialNumber = stringOf(serial.get());
    const std::wstring text = stringOf(tag.get());
    const std::size_t prefix = text.find(kTagPrefix);
    if (prefix != std::wstring::npos) {
        const std::size_t digits = prefix + std::size(kTagPrefix) - 1;
        disk.diskNumber = std::wcstol(text.c_str() + digits, nullptr, 10);
    }
    return S_OK;
}

HRESULT ParseWin32_DiskDrive(IWbemClassObject* drive, DiskInstance& disk) {
    UniqueVariant identifier;
    HRESULT result =
        getOrLog(drive, L"PNPDeviceID", identifier, L"ParseWin32_DiskDrive::Get(PNPDeviceID)");
    if (result != S_OK) return result;
    UniqueVariant index;
    result = getOrLog(drive, L"Index", index, L"ParseWin32_DiskDrive::Get(Index)");
    if (result != S_OK) return result;
    UniqueVariant sizeText;
    result = getOrLog(drive, L"Size", sizeText, L"ParseWin32_DiskDrive::Get(Size)");
    if (result != S_OK) return result;

    long long size = 0;
    if (isText(sizeText)) {
        OutputDebugStringW(L"Trying to convert size");
        size = _wtoi64(stringOf(sizeText.get()).c_str());
    }
    const auto diskNumber = static_cast<long>(index.rawLong());
    if (isText(identifier) && diskNumber >= 0) {
        disk.pnpDeviceId = stringOf(identifier.get());
        disk.diskNumber = diskNumber;
        disk.size = size;
        OutputDebugStringW(L"All done");
    }
    return S_OK;
}

}  // namespace quista

#include "mpio/drive_parser.h"

#include <iterator>
#include <string_view>

#include "quista/status.h"
#include "wmi/hex_digit.h"
#include "wmi/property.h"
#include "wmi/text_field.h"
#include "wmi/variant_text.h"

namespace quista {

namespace {

constexpr std::wstring_view kMicrosoftIscsiDsm = L"Microsoft iSCSI DSM";
// Where the hexadecimal pairs begin in a serial number of that DSM.
constexpr std::size_t kHexadecimalStart = 7;

std::wstring_view viewOf(const UniqueText& text) {
    return text != nullptr ? std::wstring_view(text.get()) : std::wstring_view();
}

wchar_t characterOfPair(std::wstring_view digits, std::size_t index) {
    const int high = HexDigitValue(digits[index]);
    const int low = index + 1 < digits.size() ? HexDigitValue(digits[index + 1]) : 0;
    return static_cast<wchar_t>(high * 16 + low);
}

/// Decodes the hexadecimal pairs up to a double quote or the end of the text. The result is the
/// characters followed by one double quote: the opening one gives way to the first character.
template <std::size_t Capacity>
void decodeIscsiSerialNumber(std::wstring_view text, wchar_t (&field)[Capacity]) {
    constexpr std::size_t kLast = Capacity - 2;  // leaves room for the quote and the terminator
    const std::wstring_view digits =
        text.size() > kHexadecimalStart ? text.substr(kHexadecimalStart) : std::wstring_view();
    field[0] = L'"';
    std::size_t length = 0;
    for (std::size_t i = 0; i < digits.size() && digits[i] != L'"' && length < kLast; i += 2) {
        field[length++] = characterOfPair(digits, i);
    }
    field[length] = L'"';
    field[length + 1] = L'\0';
}

/// Reads the owning DSM's name; a failed read counts as "Invalid Entry".
/// @return true when the disk belongs to Microsoft's iSCSI DSM
bool readDsmName(IWbemClassObject* drive, _DSM_DRIVEINFO& entry) {
    UniqueVariant value;
    static_cast<void>(getProperty(drive, L"DsmName", value));
    UniqueText text = bareText(value);
    const bool iscsiDsm = viewOf(text) == kMicrosoftIscsiDsm;
    copyToField(entry.DsmName, text.get());
    // Kept: neither the value nor its text is freed.
    value.keepOnPurpose();
    static_cast<void>(text.release());
    return iscsiDsm;
}

bool readSerialNumber(IWbemClassObject* drive, bool iscsiDsm, _DSM_DRIVEINFO& entry) {
    UniqueVariant value;
    if (getOrLog(drive, L"SerialNumber", value, L"ParseLunInfo::Get(SerialNumber)") != S_OK) {
        return false;
    }
    UniqueText text = bareText(value);
    if (iscsiDsm) {
        decodeIscsiSerialNumber(viewOf(text), entry.SerialNumber);
    } else {
        copyToField(entry.SerialNumber, text.get());
    }
    // Kept: the text is not freed.
    static_cast<void>(text.release());
    return true;
}

}  // namespace

DWORD ParseLunInfo(IWbemClassObject* drive, _DSM_DRIVEINFO* entry) {
    const bool iscsiDsm = readDsmName(drive, *entry);
    if (!readSerialNumber(drive, iscsiDsm, *entry)) return DSM_WMI_PARSING_ERROR;

    UniqueVariant value;
    if (getOrLog(drive, L"NumberPaths", value, L"ParseLunInfo::Get(NumberPaths)") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    entry->NumberPaths = value.rawLong();
    return DSM_SUCCESS;
}

}  // namespace quista

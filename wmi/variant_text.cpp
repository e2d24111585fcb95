#include "wmi/variant_text.h"

#include <cwchar>
#include <string>

#include "frame/console.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

constexpr VARTYPE kCharacterArray = VT_ARRAY | VT_I2;
constexpr SHORT kLastControlCharacter = 31;
constexpr BYTE kFirstPrintable = 32;

std::wstring orEmpty(const wchar_t* text) {
    return text != nullptr ? text : L"";
}

std::wstring integerText(int value) {
    return formatText(L"%d (0x%X)", value, value);
}

std::wstring byteText(BYTE value) {
    if (value < kFirstPrintable) return integerText(value);
    return formatText(L"'%c' (%d, 0x%X)", value, value, value);
}

std::wstring realText(double value) {
    return formatText(L"%10.4f", value);
}

SHORT characterAt(const VARIANT& value, LONG index) {
    SHORT character = 0;
    SafeArrayGetElement(value.parray, &index, &character);
    return character;
}

std::wstring numbersText(const VARIANT& value) {
    const ArrayBounds bounds = boundsOf(value);
    if (bounds.count() == 0) return L"<empty array>";
    std::wstring text;
    for (LONG index = bounds.lower; index <= bounds.upper; ++index) {
        if (!text.empty()) text += L",";
        text += formatText(L"%hd", characterAt(value, index));
    }
    return text;
}

std::wstring charactersText(const VARIANT& value) {
    const ArrayBounds bounds = boundsOf(value);
    if (bounds.count() == 0) return L"<empty>";
    std::wstring characters;
    std::wstring hexadecimal;
    std::size_t afterLastNonZero = 0;
    bool printable = true;
    for (LONG index = bounds.lower; index <= bounds.upper; ++index) {
        const SHORT character = characterAt(value, index);
        hexadecimal += formatText(L"%.02x:", character & 0xFF);
        if (character == 0) continue;
        characters += static_cast<wchar_t>(character);
        afterLastNonZero = hexadecimal.size() - 1;
        if (character > 0 && character <= kLastControlCharacter) printable = false;
    }
    return printable ? characters : hexadecimal.substr(0, afterLastNonZero);
}

bool isNullElement(const VARIANT& value, LONG index) {
    IUnknown* element = nullptr;
    SafeArrayGetElement(value.parray, &index, &element);
    if (element == nullptr) return true;
    element->Release();
    return false;
}

std::wstring objectsText(const VARIANT& value) {
    const ArrayBounds bounds = boundsOf(value);
    if (bounds.count() == 0) return L"<empty>";
    std::wstring text;
    for (LONG index = bounds.lower; index <= bounds.upper; ++index) {
        text += formatText(isNullElement(value, index) ? L"%d element is empty\t" : L"%d element\t",
                           index);
    }
    return text;
}

/// The text of a value, or false when its type has none.
bool textOf(VARIANT& value, std::wstring& text) {
    switch (value.vt) {
        case VT_NULL:
            text = L"<null>";
            return true;
        case VT_I2:
            text = integerText(value.iVal);
            return true;
        case VT_I4:
            text = integerText(value.lVal);
            return true;
        case VT_UI1:
            text = byteText(value.bVal);
            return true;
        case VT_R4:
            text = realText(static_cast<double>(value.fltVal));
            return true;
        case VT_R8:
            text = realText(value.dblVal);
            return true;
        case VT_BSTR:
            text = L"\"" + orEmpty(value.bstrVal) + L"\"";
            return true;
        case VT_BYREF | VT_BSTR:
            text = orEmpty(value.bstrVal);
            return true;
        case VT_BOOL:
            text = value.boolVal != 0 ? L"TRUE" : L"FALSE";
            return true;
        case kCharacterArray:
            text = numbersText(value);
            return true;
        case VT_BYREF | kCharacterArray:
            value.vt = kCharacterArray;
            text = charactersText(value);
            return true;
        case VT_ARRAY | VT_UNKNOWN:
            text = objectsText(value);
            return true;
        case VT_DISPATCH:
        case VT_ARRAY | VT_I4:
        case VT_ARRAY | VT_R4:
        case VT_ARRAY | VT_R8:
        case VT_ARRAY | VT_BSTR:
        case VT_ARRAY | VT_DISPATCH:
        case VT_ARRAY | VT_BOOL:
        case VT_ARRAY | VT_UI1:
            return false;
        default:
            text = L"Invalid Entry";
            return true;
    }
}

wchar_t* allocateText(const std::wstring& text) {
    // As far as the first terminator: a string may hold more characters behind it.
    const std::size_t size = (std::wcslen(text.c_str()) + 1) * sizeof(wchar_t);
    auto* copy = static_cast<wchar_t*>(std::malloc(size));
    if (copy != nullptr) std::memcpy(copy, text.c_str(), size);
    return copy;
}

}  // namespace

wchar_t* VariantToText(VARIANT* value, wchar_t** text) {
    std::wstring content;
    *text = textOf(*value, content) ? allocateText(content) : nullptr;
    return *text;
}

UniqueText quotedText(UniqueVariant& value) {
    wchar_t* text = nullptr;
    return UniqueText(VariantToText(&value.get(), &text));
}

UniqueText bareText(UniqueVariant& value) {
    VARIANT& variant = value.get();
    const VARTYPE type = variant.vt;
    variant.vt = static_cast<VARTYPE>(type | VT_BYREF);
    UniqueText text = quotedText(value);
    variant.vt = type;
    return text;
}

}  // namespace quista

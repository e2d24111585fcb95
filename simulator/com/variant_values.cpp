#include "simulator/com/variant_values.h"

#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/com/embedded_objects.h"
#include "simulator/com/pointers.h"

namespace quista::simulator {
namespace {

VARTYPE variantType(CimType type) {
    switch (type) {
        case CimType::sint8:
        case CimType::sint16:
        case CimType::char16:
            return VT_I2;
        case CimType::uint8:
            return VT_UI1;
        case CimType::uint16:
        case CimType::sint32:
        case CimType::uint32:
            return VT_I4;
        case CimType::real32:
            return VT_R4;
        case CimType::real64:
            return VT_R8;
        case CimType::boolean:
            return VT_BOOL;
        case CimType::object:
            return VT_UNKNOWN;
        case CimType::sint64:
        case CimType::uint64:
        case CimType::string:
        case CimType::datetime:
        case CimType::reference:
            break;
    }
    return VT_BSTR;
}

bool is64Bit(CimType type) {
    return type == CimType::sint64 || type == CimType::uint64;
}

std::uint64_t bitsOf(const CimValue& value) {
    if (const std::int64_t* number = value.asSigned()) return static_cast<std::uint64_t>(*number);
    if (const std::uint64_t* number = value.asUnsigned()) return *number;
    return 0;
}

std::wstring decimalText(const CimValue& value) {
    if (const std::int64_t* number = value.asSigned()) return std::to_wstring(*number);
    return std::to_wstring(bitsOf(value));
}

void writeScalar(const std::shared_ptr<Host>& host, CimType type, const CimValue& value,
                 VARIANT& target) {
    const VARTYPE vt = variantType(type);
    switch (vt) {
        case VT_I2:
            target.iVal = static_cast<SHORT>(bitsOf(value));
            break;
        case VT_UI1:
            target.bVal = static_cast<BYTE>(bitsOf(value));
            break;
        case VT_I4:
            target.lVal = static_cast<LONG>(bitsOf(value));
            break;
        case VT_R4:
            target.fltVal = static_cast<float>(*value.asReal());
            break;
        case VT_R8:
            target.dblVal = *value.asReal();
            break;
        case VT_BOOL:
            target.boolVal = *value.asBoolean() ? VARIANT_TRUE : VARIANT_FALSE;
            break;
        case VT_UNKNOWN:
            target.punkVal = makeEmbeddedObject(host, *value.asObject()).release();
            break;
        default:
            target.bstrVal = makeBstr(is64Bit(type) ? decimalText(value) : *value.asText());
            break;
    }
    target.vt = vt;
}

/// SafeArrayPutElement takes texts and interfaces themselves, everything else by address.
void* elementArgument(VARIANT& element) {
    if (element.vt == VT_BSTR) return element.bstrVal;
    if (element.vt == VT_UNKNOWN) return element.punkVal;
    return &element.bVal;
}

void writeArray(const std::shared_ptr<Host>& host, CimType type, const CimValue::Array& elements,
                VARIANT& target) {
    const VARTYPE vt = variantType(type);
    OwnedVariant array;
    array->parray = SafeArrayCreateVector(vt, 0, static_cast<ULONG>(elements.size()));
    if (array->parray == nullptr) throw std::bad_alloc();
    array->vt = static_cast<VARTYPE>(VT_ARRAY | vt);
    LONG index = 0;
    for (const CimValue& value : elements) {
        OwnedVariant element;
        writeScalar(host, type, value, *element);
        if (FAILED(SafeArrayPutElement(array->parray, &index, elementArgument(*element)))) {
            throw std::bad_alloc();
        }
        ++index;
    }
    array.moveTo(target);
}

std::optional<CimValue> integerFromDigits(std::wstring_view text, CimType type) {
    const bool negative = text.starts_with(L'-');
    if (negative) text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    std::uint64_t magnitude = 0;
    for (const wchar_t character : text) {
        if (character < L'0' || character > L'9') return std::nullopt;
        const std::uint64_t digit = static_cast<std::uint64_t>(character - L'0');
        constexpr std::uint64_t kLimit = std::numeric_limits<std::uint64_t>::max();
        if (magnitude > (kLimit - digit) / 10) return std::nullopt;
        magnitude = magnitude * 10 + digit;
    }
    return integerOfType(type, negative, magnitude);
}

std::optional<CimValue> integerFrom(const VARIANT& source, CimType type) {
    if (is64Bit(type)) {
        if (source.vt != VT_BSTR) return std::nullopt;
        return integerFromDigits(std::wstring_view(source.bstrVal, SysStringLen(source.bstrVal)),
                                 type);
    }
    // WMI widens nothing here: a 16-bit value is refused for an unsigned 32-bit property.
    if (type == CimType::uint32 && source.vt == VT_I2) return std::nullopt;
    OwnedVariant number;
    if (number.convert(source, VT_I4)) {
        const LONG value = number->lVal;
        if (type == CimType::uint32) return CimValue::ofUnsigned(static_cast<ULONG>(value));
        if (type == CimType::char16 && source.vt == VT_I2) {
            return CimValue::ofUnsigned(static_cast<USHORT>(value));
        }
        const std::int64_t wide = value;
        return integerOfType(type, wide < 0, static_cast<std::uint64_t>(wide < 0 ? -wide : wide));
    }
    if (type != CimType::uint32 || !number.convert(source, VT_UI4)) return std::nullopt;
    return CimValue::ofUnsigned(number->ulVal);
}

std::optional<CimValue> objectFrom(const VARIANT& source) {
    if (source.vt != VT_UNKNOWN) return std::nullopt;
    if (source.punkVal == nullptr) return CimValue();
    CimInstancePtr instance = instanceBehind(source.punkVal);
    if (instance == nullptr) return std::nullopt;
    return CimValue::ofObject(std::move(instance));
}

std::optional<CimValue> scalarFrom(const VARIANT& source, CimType type) {
    if (type == CimType::object) return objectFrom(source);
    if (source.vt == VT_EMPTY || source.vt == VT_UNKNOWN) return std::nullopt;
    if (isSignedInteger(type) || isUnsignedInteger(type)) return integerFrom(source, type);
    OwnedVariant value;
    if (!value.convert(source, variantType(type))) return std::nullopt;
    switch (value->vt) {
        case VT_R4:
            return CimValue::ofReal(value->fltVal);
        case VT_R8:
            return CimValue::ofReal(value->dblVal);
        case VT_BOOL:
            return CimValue::ofBoolean(value->boolVal != VARIANT_FALSE);
        default:
            return CimValue::ofText(std::wstring(value->bstrVal, SysStringLen(value->bstrVal)));
    }
}

std::optional<CimValue> arrayFrom(const VARIANT& source, CimType type) {
    CimValue::Array elements;
    const bool complete = visitElements(source, [&](const VARIANT& element) {
        std::optional<CimValue> value;
        if (element.vt != VT_NULL) value = scalarFrom(element, type);
        if (!value || value->isNull()) return false;
        elements.push_back(std::move(*value));
        return true;
    });
    if (!complete) return std::nullopt;
    return CimValue::ofArray(std::move(elements));
}

}  // namespace

void toVariant(const std::shared_ptr<Host>& host, const CimDeclaredType& type,
               const CimValue& value, VARIANT& target) {
    target = VARIANT{};
    if (value.isNull()) {
        target.vt = VT_NULL;
    } else if (type.isArray) {
        writeArray(host, type.base, *value.asArray(), target);
    } else {
        writeScalar(host, type.base, value, target);
    }
}

std::optional<CimValue> fromVariant(const VARIANT& source, const CimDeclaredType& type) {
    if (source.vt == VT_NULL) return CimValue();
    if ((source.vt & VT_BYREF) != 0) return std::nullopt;
    const bool isArray = (source.vt & VT_ARRAY) != 0;
    if (isArray != type.isArray) return std::nullopt;
    return isArray ? arrayFrom(source, type.base) : scalarFrom(source, type.base);
}

}  // namespace quista::simulator

#include "simulator/repository/cim_value.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "simulator/repository/cim_instance.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

constexpr std::array<std::pair<CimType, std::wstring_view>, 15> kTypeNames{{
    {CimType::sint8, L"sint8"},
    {CimType::uint8, L"uint8"},
    {CimType::sint16, L"sint16"},
    {CimType::uint16, L"uint16"},
    {CimType::sint32, L"sint32"},
    {CimType::uint32, L"uint32"},
    {CimType::sint64, L"sint64"},
    {CimType::uint64, L"uint64"},
    {CimType::real32, L"real32"},
    {CimType::real64, L"real64"},
    {CimType::boolean, L"boolean"},
    {CimType::string, L"string"},
    {CimType::datetime, L"datetime"},
    {CimType::char16, L"char16"},
    {CimType::object, L"object"},
}};

std::uint64_t maximumOf(CimType type) {
    switch (type) {
        case CimType::sint8:
            return std::numeric_limits<std::int8_t>::max();
        case CimType::sint16:
            return std::numeric_limits<std::int16_t>::max();
        case CimType::sint32:
            return std::numeric_limits<std::int32_t>::max();
        case CimType::sint64:
            return std::numeric_limits<std::int64_t>::max();
        case CimType::uint8:
            return std::numeric_limits<std::uint8_t>::max();
        case CimType::char16:
        case CimType::uint16:
            return std::numeric_limits<std::uint16_t>::max();
        case CimType::uint32:
            return std::numeric_limits<std::uint32_t>::max();
        case CimType::uint64:
            return std::numeric_limits<std::uint64_t>::max();
        default:
            return 0;
    }
}

/// The negative number of that magnitude, which is at most 2^63.
std::int64_t negated(std::uint64_t magnitude) {
    if (magnitude == 0) return 0;
    return -static_cast<std::int64_t>(magnitude - 1) - 1;
}

bool signedFits(CimType type, std::int64_t number) {
    const auto maximum = static_cast<std::int64_t>(maximumOf(type));
    return number <= maximum && number >= -maximum - 1;
}

bool realFits(CimType type, double number) {
    if (!std::isfinite(number)) return false;
    return type == CimType::real64 || std::abs(number) <= std::numeric_limits<float>::max();
}

bool scalarFits(const CimDeclaredType& type, const CimValue& value) {
    if (const auto* number = value.asSigned())
        return isSignedInteger(type.base) && signedFits(type.base, *number);
    if (const auto* number = value.asUnsigned())
        return isUnsignedInteger(type.base) && *number <= maximumOf(type.base);
    if (const auto* number = value.asReal())
        return isReal(type.base) && realFits(type.base, *number);
    if (value.asBoolean()) return type.base == CimType::boolean;
    if (value.asText()) return isText(type.base);
    if (const auto* object = value.asObject())
        return type.base == CimType::object &&
               (type.className.empty() || (*object)->definition().isA(type.className));
    return false;
}

}  // namespace

bool isSignedInteger(CimType type) {
    return type == CimType::sint8 || type == CimType::sint16 || type == CimType::sint32 ||
           type == CimType::sint64;
}

bool isUnsignedInteger(CimType type) {
    return type == CimType::uint8 || type == CimType::uint16 || type == CimType::uint32 ||
           type == CimType::uint64 || type == CimType::char16;
}

bool isReal(CimType type) {
    return type == CimType::real32 || type == CimType::real64;
}

bool isText(CimType type) {
    return type == CimType::string || type == CimType::datetime || type == CimType::reference;
}

std::wstring_view typeName(CimType type) {
    for (const auto& [known, name] : kTypeNames)
        if (known == type) return name;
    return {};
}

std::optional<CimType> typeNamed(std::wstring_view name) {
    for (const auto& [type, known] : kTypeNames)
        if (equalNoCase(known, name)) return type;
    return std::nullopt;
}

bool CimDeclaredType::operator==(const CimDeclaredType& other) const {
    return base == other.base && isArray == other.isArray &&
           equalNoCase(className, other.className);
}

CimValue CimValue::ofObject(const CimInstance& object) {
    return ofObject(std::make_shared<const CimInstance>(object));
}

bool CimValue::operator==(const CimValue& other) const {
    const CimInstancePtr* left = asObject();
    const CimInstancePtr* right = other.asObject();
    if (left && right) return *left == *right || **left == **right;
    return content_ == other.content_;
}

std::optional<CimValue> integerOfType(CimType type, bool negative, std::uint64_t magnitude) {
    const std::uint64_t maximum = maximumOf(type);
    if (isSignedInteger(type)) {
        if (magnitude > maximum + (negative ? 1 : 0)) return std::nullopt;
        return CimValue::ofSigned(negative ? negated(magnitude)
                                           : static_cast<std::int64_t>(magnitude));
    }
    if (!isUnsignedInteger(type) || magnitude > maximum || (negative && magnitude != 0))
        return std::nullopt;
    return CimValue::ofUnsigned(magnitude);
}

bool valueFits(const CimDeclaredType& type, const CimValue& value) {
    if (value.isNull()) return true;
    const CimValue::Array* elements = value.asArray();
    if (!type.isArray) return !elements && scalarFits(type, value);
    return elements && std::all_of(elements->begin(), elements->end(),
                                   [&](const CimValue& each) { return scalarFits(type, each); });
}

}  // namespace quista::simulator

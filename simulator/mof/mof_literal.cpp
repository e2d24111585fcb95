#include "simulator/mof/mof_literal.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "simulator/repository/object_path.h"
#include "simulator/repository/text_scan.h"

namespace quista::simulator {
namespace {

using Kind = MofLiteral::Kind;

std::wstring describeKind(const MofLiteral& literal) {
    switch (literal.kind) {
        case Kind::null:
            return L"NULL";
        case Kind::boolean:
            return L"a boolean";
        case Kind::integer:
            return L"an integer";
        case Kind::real:
            return L"a real number";
        case Kind::text:
            return L"a string";
        case Kind::character:
            return L"a character";
        case Kind::object:
            return L"an instance of " + literal.object->className();
        case Kind::list:
            break;
    }
    return L"a list";
}

/// Reads the decimal text that WMI writes for 64-bit integers.
std::optional<CimValue> decimalOfType(CimType type, std::wstring_view text) {
    const std::optional<ScannedInteger> integer = scanDecimal(text);
    if (!integer) return std::nullopt;
    return integerOfType(type, integer->negative, integer->magnitude);
}

/// Form yyyymmddhhmmss.mmmmmmsutc, or with a colon for intervals; asterisks stand for any digit.
bool isDateTime(std::wstring_view text) {
    constexpr std::size_t kLength = 25;
    constexpr std::size_t kPoint = 14;
    constexpr std::size_t kSign = 21;
    if (text.size() != kLength || text[kPoint] != L'.') return false;
    if (std::wstring_view(L"+-:").find(text[kSign]) == std::wstring_view::npos) return false;
    for (std::size_t i = 0; i < kLength; ++i)
        if (i != kPoint && i != kSign && text[i] != L'*' && !isDigit(text[i])) return false;
    return true;
}

/// Converts scalars of one type in one file.
class ScalarConverter {
  public:
    ScalarConverter(const CimDeclaredType& type, const std::wstring& file)
        : type_(type), file_(file) {}

    CimValue convert(const MofLiteral& literal) const {
        switch (literal.kind) {
            case Kind::boolean:
                return boolean(literal);
            case Kind::integer:
            case Kind::character:
                return number(literal);
            case Kind::real:
                return real(literal, literal.real);
            case Kind::text:
                return text(literal);
            case Kind::object:
                return object(literal);
            case Kind::null:
            case Kind::list:
                break;
        }
        failWrongType(literal);
    }

  private:
    [[noreturn]] void failWrongType(const MofLiteral& literal) const {
        const CimDeclaredType element{type_.base, false, type_.className};
        failAt(
            file_, literal.position,
            L"wrong type: expected " + describeType(element) + L", found " + describeKind(literal));
    }

    [[noreturn]] void failOutOfRange(const MofLiteral& literal) const {
        failAt(file_, literal.position,
               L"the value is out of the range of " + std::wstring(typeName(type_.base)));
    }

    CimValue boolean(const MofLiteral& literal) const {
        if (type_.base != CimType::boolean) failWrongType(literal);
        return CimValue::ofBoolean(literal.truth);
    }

    CimValue number(const MofLiteral& literal) const {
        if (literal.kind == Kind::character && type_.base != CimType::char16)
            failWrongType(literal);
        if (isReal(type_.base)) {
            const auto magnitude = static_cast<double>(literal.magnitude);
            return real(literal, literal.negative ? -magnitude : magnitude);
        }
        if (!isSignedInteger(type_.base) && !isUnsignedInteger(type_.base)) failWrongType(literal);
        std::optional<CimValue> value =
            integerOfType(type_.base, literal.negative, literal.magnitude);
        if (!value) failOutOfRange(literal);
        return *value;
    }

    CimValue real(const MofLiteral& literal, double value) const {
        if (!isReal(type_.base)) failWrongType(literal);
        if (type_.base == CimType::real64) return CimValue::ofReal(value);
        if (std::abs(value) > std::numeric_limits<float>::max()) failOutOfRange(literal);
        return CimValue::ofReal(static_cast<double>(static_cast<float>(value)));
    }

    CimValue text(const MofLiteral& literal) const {
        if (type_.base == CimType::sint64 || type_.base == CimType::uint64) {
            std::optional<CimValue> value = decimalOfType(type_.base, literal.text);
            if (!value)
                failAt(file_, literal.position,
                       L"the string is no decimal number in the range of " +
                           std::wstring(typeName(type_.base)));
            return *value;
        }
        if (!isText(type_.base)) failWrongType(literal);
        if (type_.base == CimType::datetime && !isDateTime(literal.text))
            failAt(file_, literal.position, L"the string is no datetime");
        return CimValue::ofText(literal.text);
    }

    CimValue object(const MofLiteral& literal) const {
        if (type_.base == CimType::reference && literal.isAlias) {
            std::wstring path = relativePath(*literal.object);
            if (path.empty())
                failAt(file_, literal.position, L"the instance has no key to refer to it by");
            return CimValue::ofText(std::move(path));
        }
        CimValue value = CimValue::ofObject(literal.object);
        if (!valueFits({type_.base, false, type_.className}, value)) failWrongType(literal);
        return value;
    }

    const CimDeclaredType& type_;
    const std::wstring& file_;
};

/// Qualifiers declare no type: theirs is that of the literal.
CimType qualifierType(const MofLiteral& literal, const std::wstring& file) {
    switch (literal.kind) {
        case Kind::boolean:
            return CimType::boolean;
        case Kind::integer:
            return CimType::sint64;
        case Kind::real:
            return CimType::real64;
        case Kind::character:
        case Kind::object:
            failAt(file, literal.position, L"a qualifier cannot hold " + describeKind(literal));
        default:
            return CimType::string;
    }
}

}  // namespace

std::wstring describeType(const CimDeclaredType& type) {
    std::wstring text(typeName(type.base));
    if (type.base == CimType::reference) text = L"reference";
    if (!type.className.empty() && type.base == CimType::object)
        text = L"an instance of " + type.className;
    return type.isArray ? text + L"[]" : text;
}

CimValue convertLiteral(const MofLiteral& literal, const CimDeclaredType& type,
                        const std::wstring& file) {
    if (literal.kind == Kind::null) return {};
    const ScalarConverter converter(type, file);
    if (!type.isArray) return converter.convert(literal);
    if (literal.kind != Kind::list)
        failAt(file, literal.position,
               L"wrong type: expected a list in braces, found " + describeKind(literal));
    CimValue::Array elements;
    elements.reserve(literal.elements.size());
    for (const MofLiteral& element : literal.elements)
        elements.push_back(converter.convert(element));
    return CimValue::ofArray(std::move(elements));
}

CimValue convertQualifierLiteral(const MofLiteral& literal, const std::wstring& file) {
    if (literal.kind != Kind::list)
        return convertLiteral(literal, {qualifierType(literal, file), false, {}}, file);
    const std::vector<MofLiteral>& elements = literal.elements;
    for (const MofLiteral& element : elements)
        if (element.kind != elements.front().kind)
            failAt(file, element.position, L"the elements of a qualifier must be of one type");
    const CimType base = elements.empty() ? CimType::string : qualifierType(elements.front(), file);
    return convertLiteral(literal, {base, true, {}}, file);
}

}  // namespace quista::simulator

// The types and values of CIM: what a property, a parameter or a qualifier holds.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quista::simulator {

class CimInstance;
/// Instances are shared once they are finished: nobody changes them, so a copy of the pointer is as
/// good as a copy of the object.
using CimInstancePtr = std::shared_ptr<const CimInstance>;

/// The CIM types under the numbers that WMI gives them.
enum class CimType : std::uint16_t {
    sint16 = 2,
    sint32 = 3,
    real32 = 4,
    real64 = 5,
    string = 8,
    boolean = 11,
    object = 13,
    sint8 = 16,
    uint8 = 17,
    uint16 = 18,
    uint32 = 19,
    sint64 = 20,
    uint64 = 21,
    datetime = 101,
    reference = 102,
    char16 = 103,
};

bool isSignedInteger(CimType type);
/// char16 counts among them.
bool isUnsignedInteger(CimType type);
bool isReal(CimType type);
/// string, datetime and reference.
bool isText(CimType type);

/// The type's name in MOF; a reference is written `CLASS ref` and has none of its own.
std::wstring_view typeName(CimType type);
std::optional<CimType> typeNamed(std::wstring_view name);

/// The declared type of a property, parameter or return value.
struct CimDeclaredType {
    CimType base = CimType::string;
    bool isArray = false;
    std::wstring className;  ///< class of an object or reference; empty means any

    bool operator==(const CimDeclaredType& other) const;
};

/// One value: NULL, a scalar, an embedded object, or an array of these. Signed CIM types hold
/// `std::int64_t`, unsigned ones and char16 `std::uint64_t`, real types `double`, the text types
/// `std::wstring`.
class CimValue {
  public:
    using Array = std::vector<CimValue>;

    CimValue() = default;  ///< NULL

    static CimValue ofSigned(std::int64_t number) { return CimValue(Content(number)); }
    static CimValue ofUnsigned(std::uint64_t number) { return CimValue(Content(number)); }
    static CimValue ofReal(double number) { return CimValue(Content(number)); }
    static CimValue ofBoolean(bool truth) { return CimValue(Content(truth)); }
    static CimValue ofText(std::wstring text) { return CimValue(Content(std::move(text))); }
    /// The object must not be a null pointer.
    static CimValue ofObject(CimInstancePtr object) { return CimValue(Content(std::move(object))); }
    static CimValue ofObject(const CimInstance& object);
    static CimValue ofArray(Array elements) { return CimValue(Content(std::move(elements))); }

    bool isNull() const { return std::holds_alternative<std::monostate>(content_); }

    /// Each gives the content, or a null pointer when the value is of another kind.
    const std::int64_t* asSigned() const { return std::get_if<std::int64_t>(&content_); }
    const std::uint64_t* asUnsigned() const { return std::get_if<std::uint64_t>(&content_); }
    const double* asReal() const { return std::get_if<double>(&content_); }
    const bool* asBoolean() const { return std::get_if<bool>(&content_); }
    const std::wstring* asText() const { return std::get_if<std::wstring>(&content_); }
    const CimInstancePtr* asObject() const { return std::get_if<CimInstancePtr>(&content_); }
    const Array* asArray() const { return std::get_if<Array>(&content_); }

    /// Embedded objects are compared by content.
    bool operator==(const CimValue& other) const;

  private:
    using Content = std::variant<std::monostate, std::int64_t, std::uint64_t, double, bool,
                                 std::wstring, CimInstancePtr, Array>;

    explicit CimValue(Content content) : content_(std::move(content)) {}

    Content content_;
};

/// The integer as a value of an integer type; nothing when the type cannot hold it or is no
/// integer type.
std::optional<CimValue> integerOfType(CimType type, bool negative, std::uint64_t magnitude);

/// Whether a property of that type can hold the value: its kind, the range of the type, the class
/// of embedded objects (the declared one or a subclass). NULL fits every type, but no array holds
/// NULL elements. Real numbers must be finite.
bool valueFits(const CimDeclaredType& type, const CimValue& value);

}  // namespace quista::simulator

// Class definitions: properties, methods and qualifiers.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/repository/cim_value.h"

namespace quista::simulator {

/// How far a qualifier reaches, as written behind its colon in MOF.
enum class QualifierFlavor : std::uint8_t {
    none = 0,
    toInstance = 1,
    toSubclass = 2,
    disableOverride = 4,
    amended = 8,
    translatable = 16,
};

constexpr QualifierFlavor operator|(QualifierFlavor left, QualifierFlavor right) {
    return static_cast<QualifierFlavor>(static_cast<unsigned>(left) | static_cast<unsigned>(right));
}
constexpr bool hasFlavor(QualifierFlavor flavors, QualifierFlavor one) {
    return (static_cast<unsigned>(flavors) & static_cast<unsigned>(one)) != 0;
}

/// A qualifier: any name with a boolean, signed integer, real or text, or an array of these.
struct CimQualifier {
    std::wstring name;
    CimValue value;
    QualifierFlavor flavors = QualifierFlavor::none;

    bool operator==(const CimQualifier& other) const;
};

/// Qualifiers in the order in which they were written.
class CimQualifiers {
  public:
    const CimQualifier* find(std::wstring_view name) const;
    /// True when the qualifier is there with the value TRUE, as in `[key]`.
    bool isSet(std::wstring_view name) const;
    /// Adds the qualifier, or replaces the one of that name.
    void put(CimQualifier qualifier);
    void remove(std::wstring_view name);
    bool empty() const { return items_.empty(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

    bool operator==(const CimQualifiers&) const = default;

  private:
    std::vector<CimQualifier> items_;
};

struct CimProperty {
    std::wstring name;
    CimDeclaredType type;
    CimValue defaultValue;
    CimQualifiers qualifiers;
    std::wstring declaredIn;  ///< the nearest class that declares it

    bool isKey() const { return qualifiers.isSet(L"key"); }
    bool operator==(const CimProperty& other) const;
};

struct CimParameter {
    std::wstring name;
    CimDeclaredType type;
    bool isIn = false;
    bool isOut = false;
    CimQualifiers qualifiers;  ///< without in and out

    bool operator==(const CimParameter& other) const;
};

struct CimMethod {
    std::wstring name;
    std::optional<CimDeclaredType> returnType;  ///< nothing for void
    std::vector<CimParameter> parameters;
    CimQualifiers qualifiers;
    std::wstring declaredIn;

    bool operator==(const CimMethod& other) const;
};

struct CimClass;
/// Definitions are shared once they are finished: nobody changes them, a class is replaced.
using CimClassPtr = std::shared_ptr<const CimClass>;

/// A class definition. In a repository it is complete: inherited properties and methods come first,
/// in the order of the superclass.
struct CimClass {
    std::wstring name;
    std::wstring superclass;              ///< empty for a class without one
    std::vector<std::wstring> ancestors;  ///< nearest first; filled by the repository
    CimQualifiers qualifiers;
    std::vector<CimProperty> properties;
    std::vector<CimMethod> methods;

    const CimProperty* findProperty(std::wstring_view property) const;
    const CimMethod* findMethod(std::wstring_view method) const;
    bool isAbstract() const { return qualifiers.isSet(L"abstract"); }
    bool isSingleton() const { return qualifiers.isSet(L"singleton"); }
    bool hasKey() const;
    /// True for the class itself and for every ancestor.
    bool isA(std::wstring_view className) const;

    bool operator==(const CimClass& other) const;
};

/// The `__PARAMETERS` class whose properties are the method's in-parameters; null when it has none.
CimClassPtr inSignature(const CimMethod& method);
/// The same for its out-parameters, with `ReturnValue` for a method that is not void.
CimClassPtr outSignature(const CimMethod& method);

}  // namespace quista::simulator

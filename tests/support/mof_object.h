// Writes instances as MOF text, for fixtures that a test changes property by property.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quista::test {

/// One instance of a class: property names and values, in the order they were set. Setting a
/// property again replaces its value.
class MofObject {
  public:
    explicit MofObject(std::wstring className) : className_(std::move(className)) {}

    MofObject& text(const std::wstring& property, const std::wstring& value);
    MofObject& number(const std::wstring& property, std::int64_t value);
    MofObject& unsignedNumber(const std::wstring& property, std::uint64_t value);
    MofObject& boolean(const std::wstring& property, bool value);
    MofObject& null(const std::wstring& property);
    MofObject& texts(const std::wstring& property, const std::vector<std::wstring>& values);
    MofObject& numbers(const std::wstring& property, const std::vector<std::int64_t>& values);
    MofObject& object(const std::wstring& property, const MofObject& value);
    MofObject& objects(const std::wstring& property, const std::vector<MofObject>& values);
    /// The value as it stands in MOF.
    MofObject& raw(const std::wstring& property, const std::wstring& value);
    /// Takes a property out again, so that it has the class's default or no value.
    MofObject& unset(const std::wstring& property);

    /// "instance of C { ... }", without the semicolon that ends a declaration.
    std::wstring toMof() const;

  private:
    std::wstring className_;
    std::vector<std::pair<std::wstring, std::wstring>> properties_;
};

}  // namespace quista::test

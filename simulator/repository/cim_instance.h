// Instances: the values of the properties that a class declares.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulator/repository/cim_class.h"
#include "simulator/repository/cim_value.h"

namespace quista::simulator {

/// An object of a class. It keeps the definition it was made from, so that it stays usable when the
/// repository replaces or deletes the class.
class CimInstance {
  public:
    enum class SetResult { done, unknownProperty, wrongType };

    /// An instance with the class's default values; the definition must not be a null pointer.
    explicit CimInstance(CimClassPtr definition);

    const CimClass& definition() const { return *definition_; }
    const CimClassPtr& sharedDefinition() const { return definition_; }
    const std::wstring& className() const { return definition_->name; }

    /// The property's value; a null pointer when the class has no such property.
    const CimValue* find(std::wstring_view property) const;
    SetResult set(std::wstring_view property, CimValue value);

    /// The values in the order of `definition().properties`.
    const std::vector<CimValue>& values() const { return values_; }

    /// The same object under another definition of its class: properties of the same name and type
    /// keep their value, others get their default.
    CimInstance rebasedOn(CimClassPtr definition) const;

    /// Equal class name and equal values of equally named properties.
    bool operator==(const CimInstance& other) const;

  private:
    CimClassPtr definition_;
    std::vector<CimValue> values_;
};

}  // namespace quista::simulator

// What an IWbemClassObject stands for: a class or an instance, and how its properties read.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/repository/cim_class.h"
#include "simulator/repository/cim_instance.h"

namespace quista::simulator {

struct ObjectState {
    CimClassPtr definition;   ///< never a null pointer
    CimInstancePtr instance;  ///< a null pointer for class objects
    std::wstring nameSpace;   ///< empty for embedded objects and method parameters
    bool isStored = false;    ///< an instance out of the repository: its key cannot be changed

    bool isInstance() const { return instance != nullptr; }
};

ObjectState stateOfClass(CimClassPtr definition, std::wstring_view nameSpace);
ObjectState stateOfInstance(CimInstancePtr instance, std::wstring_view nameSpace);

/// A property as Get delivers it.
struct PropertyReading {
    CimDeclaredType type;
    CimValue value;
    LONG flavor = WBEM_FLAVOR_ORIGIN_LOCAL;
};

/// Reads a property of the class or a system property; nothing when there is none of that name.
std::optional<PropertyReading> readProperty(const ObjectState& state, std::wstring_view name);

bool isSystemName(std::wstring_view name);

/// Names in WMI's order: system properties, then the class's. `origin` is one of the WBEM_FLAG
/// origin flags (local, propagated, system, non-system) or 0 for all.
std::vector<std::wstring> propertyNames(const ObjectState& state, LONG origin);

CIMTYPE cimTypeNumber(const CimDeclaredType& type);

}  // namespace quista::simulator

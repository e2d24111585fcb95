// Namespaces and object paths in WMI's notation.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/repository/cim_instance.h"

namespace quista::simulator {

/// The name under which the simulated machine knows itself; `.` and `localhost` mean it too.
inline constexpr std::wstring_view kServerName = L"SIMULATED";

/// A namespace such as `root\wmi`, `//./root/cimv2` or `\\.\root` in its plain form with single
/// backslashes and without server; the case is kept. Nothing for a badly written one (empty,
/// trailing or doubled backslash) or another server.
std::optional<std::wstring> normalizeNamespace(std::wstring_view text);

/// A parsed object path: a class, an instance with its key values, or a singleton.
struct ObjectPath {
    struct Key {
        std::wstring name;  ///< empty in the form Class="value"
        CimValue value;     ///< text, integer (signed when negative) or boolean
    };

    std::wstring nameSpace;  ///< normalized; empty when the path has none
    std::wstring className;
    bool isSingleton = false;  ///< Class=@
    std::vector<Key> keys;

    bool isClass() const { return keys.empty() && !isSingleton; }
};

/// Reads `Class`, `Class.Key="text"`, `Class="text"`, `Class.K1="a",K2=3`, `Class=@`, each also
/// after `\\server\namespace:` or `namespace:`. Nothing when the text is not a path.
std::optional<ObjectPath> parseObjectPath(std::wstring_view text);

/// The path of an instance relative to its namespace, such as `Class.InstanceName="a\\b"`; empty
/// when its class has neither keys nor the singleton qualifier, or a key is NULL.
std::wstring relativePath(const CimInstance& instance);

}  // namespace quista::simulator

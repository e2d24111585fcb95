// The keys under which a namespace finds its instances.
#pragma once

#include <optional>
#include <string>

#include "simulator/repository/cim_instance.h"
#include "simulator/repository/object_path.h"
#include "simulator/repository/repository_status.h"

namespace quista::simulator {

/// Writes the key of an instance: the same text for all spellings of the same key values, whatever
/// their case and order.
RepositoryStatus keyOf(const CimInstance& instance, std::wstring& key);

/// The key that a path to an instance of the class names; nothing when the path cannot name one.
std::optional<std::wstring> keyOf(const ObjectPath& path, const CimClass& definition);

}  // namespace quista::simulator

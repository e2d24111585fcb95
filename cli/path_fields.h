// The field table of paths.
#pragma once

#include <vector>

#include "cli/fields.h"
#include "cli/model.h"

namespace quista::cli {

/// The driver's state of a path, by which its colour goes.
Value stateOf(const Path& path);

/// What the driver says of a path.
Fields<PathOfLun> pathFields();
/// The same and the adapter of the host, for paths whose adapters have been looked up.
Fields<PathOfLun> pathAndAdapterFields();

/// The paths of one LUN; the LUN must outlive them.
std::vector<PathOfLun> pathsOf(const Lun& lun);

}  // namespace quista::cli

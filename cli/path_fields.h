// The field table of paths.
#pragma once

#include <vector>

#include "cli/fields.h"
#include "cli/model.h"

namespace quista::cli {

Fields<PathOfLun> pathFields();

/// The paths of one LUN; the LUN must outlive them.
std::vector<PathOfLun> pathsOf(const Lun& lun);

}  // namespace quista::cli

// A report as one JSON document.
#pragma once

#include <string>

#include "cli/report.h"

namespace quista::cli {

/// Version of the document's schema. Keys are added under the same number; a key that changes its
/// meaning or goes away raises it.
inline constexpr int kSchemaVersion = 1;

std::string renderJson(const Report& report);

}  // namespace quista::cli

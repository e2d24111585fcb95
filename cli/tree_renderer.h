// Records within records as a tree, for a terminal of any width.
#pragma once

#include <string>

#include "cli/report.h"
#include "cli/text_style.h"

namespace quista::cli {

/// The section's rows as roots, and the rows of their children as branches below them. The values
/// of one record stand in one line, aligned with those of its siblings; where that is wider than
/// the terminal they take several lines, and nothing is left out.
std::string renderTree(const Section& section, const TextStyle& style);

}  // namespace quista::cli

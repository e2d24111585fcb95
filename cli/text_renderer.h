// A report as text for people: aligned tables on standard output, messages on standard error.
#pragma once

#include <string>

#include "cli/report.h"
#include "cli/text_style.h"

namespace quista::cli {

/// Tables and summary. In a table that is wider than the terminal sentences are broken into lines,
/// or its columns are folded into several lines, or each record becomes a block of lines. Nothing
/// is ever left out.
std::string renderText(const Report& report, const TextStyle& style);

/// One line per message, and one for its hint.
std::string renderMessages(const Report& report, bool hasColor);

}  // namespace quista::cli

// How text for people is dressed: width of the terminal, headers, colour.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "cli/report.h"

namespace quista::cli {

/// Blanks between two values that stand beside each other.
inline constexpr std::size_t kGap = 2;

struct TextStyle {
    /// Columns of the terminal; none for pipes and files, whose lines are never broken.
    std::optional<std::size_t> width;
    bool hasColor = false;
    bool hasHeaders = true;
};

inline constexpr std::string_view kBold = "\x1b[1m";

/// Escape sequence that begins the tone's colour; empty for a plain one.
std::string_view colorOf(Tone tone);

/// The text between the colour's sequence and the one that ends it; the bare text without colour.
std::string colored(std::string_view text, std::string_view color, const TextStyle& style);

}  // namespace quista::cli

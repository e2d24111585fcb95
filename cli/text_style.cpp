#include "cli/text_style.h"

#include <fmt/format.h>

namespace quista::cli {
namespace {

constexpr std::string_view kGreen = "\x1b[32m";
constexpr std::string_view kYellow = "\x1b[33m";
constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kReset = "\x1b[0m";

}  // namespace

std::string_view colorOf(Tone tone) {
    switch (tone) {
        case Tone::kGood:
            return kGreen;
        case Tone::kWarning:
            return kYellow;
        case Tone::kBad:
            return kRed;
        case Tone::kPlain:
            break;
    }
    return {};
}

std::string colored(std::string_view text, std::string_view color, const TextStyle& style) {
    if (!style.hasColor || color.empty()) return std::string(text);
    return fmt::format("{}{}{}", color, text, kReset);
}

}  // namespace quista::cli

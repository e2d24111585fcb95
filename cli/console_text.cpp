#include "cli/console_text.h"

#include <algorithm>

#include "cli/text_style.h"

namespace quista::cli {
namespace {

constexpr WORD kForeground =
    FOREGROUND_RED | FOREGROUND_GREEN | FOREGROUND_BLUE | FOREGROUND_INTENSITY;

WORD withForeground(WORD original, WORD color) {
    return static_cast<WORD>((original & ~kForeground) | color);
}

}  // namespace

std::vector<ConsolePiece> splitAtSequences(std::string_view text) {
    std::vector<ConsolePiece> pieces;
    std::string_view sequence;
    while (!text.empty() || !sequence.empty()) {
        const std::size_t next = std::min(text.find('\x1b'), text.size());
        pieces.push_back({sequence, text.substr(0, next)});
        text.remove_prefix(next);
        const std::size_t length = text.empty() ? 0 : std::min(text.find('m'), text.size() - 1) + 1;
        sequence = text.substr(0, length);
        text.remove_prefix(length);
    }
    return pieces;
}

WORD attributesFor(std::string_view sequence, WORD original) {
    if (sequence == kBold) return static_cast<WORD>(original | FOREGROUND_INTENSITY);
    if (sequence == colorOf(Tone::kGood)) return withForeground(original, FOREGROUND_GREEN);
    if (sequence == colorOf(Tone::kWarning)) {
        return withForeground(original, FOREGROUND_RED | FOREGROUND_GREEN);
    }
    if (sequence == colorOf(Tone::kBad)) return withForeground(original, FOREGROUND_RED);
    return original;
}

}  // namespace quista::cli

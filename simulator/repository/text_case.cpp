#include "simulator/repository/text_case.h"

#include <algorithm>

namespace quista::simulator {
namespace {

/// A run of capital letters whose small letters follow at a fixed distance.
struct CapitalRun {
    wchar_t first;
    wchar_t last;
    wchar_t distance;
};

/// Latin, Greek and Cyrillic. A table of our own, since the C library's answers change with the
/// locale of the process and keys are stored in folded form.
constexpr CapitalRun kCapitals[] = {
    {L'A', L'Z', 32},           {L'\u00C0', L'\u00D6', 32}, {L'\u00D8', L'\u00DE', 32},
    {L'\u0391', L'\u03A1', 32}, {L'\u03A3', L'\u03AB', 32}, {L'\u0400', L'\u040F', 80},
    {L'\u0410', L'\u042F', 32},
};

wchar_t fold(wchar_t character) {
    for (const auto [first, last, distance] : kCapitals)
        if (character >= first && character <= last)
            return static_cast<wchar_t>(character + distance);
    return character;
}

}  // namespace

std::wstring foldCase(std::wstring_view text) {
    std::wstring folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), fold);
    return folded;
}

bool equalNoCase(std::wstring_view left, std::wstring_view right) {
    return left.size() == right.size() && compareNoCase(left, right) == 0;
}

int compareNoCase(std::wstring_view left, std::wstring_view right) {
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        const wchar_t a = fold(left[i]);
        const wchar_t b = fold(right[i]);
        if (a != b) return a < b ? -1 : 1;
    }
    if (left.size() == right.size()) return 0;
    return left.size() < right.size() ? -1 : 1;
}

}  // namespace quista::simulator

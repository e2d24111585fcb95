#include "simulator/repository/text_case.h"

#include <algorithm>
#include <cwctype>

namespace quista::simulator {
namespace {

wchar_t fold(wchar_t character) {
    if (character >= L'A' && character <= L'Z')
        return static_cast<wchar_t>(character - L'A' + L'a');
    if (character < 0x80) return character;
    return static_cast<wchar_t>(std::towlower(character));
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

#include "simulator/repository/text_scan.h"

#include <limits>

namespace quista::simulator {

bool appendDigit(std::uint64_t& number, unsigned digit, unsigned base) {
    if (number > (std::numeric_limits<std::uint64_t>::max() - digit) / base) return false;
    number = number * base + digit;
    return true;
}

std::optional<ScannedInteger> scanDecimal(std::wstring_view text) {
    ScannedInteger integer;
    integer.negative = text.starts_with(L'-');
    if (integer.negative || text.starts_with(L'+')) text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    for (const wchar_t character : text) {
        if (!isDigit(character)) return std::nullopt;
        if (!appendDigit(integer.magnitude, static_cast<unsigned>(character - L'0')))
            return std::nullopt;
    }
    return integer;
}

}  // namespace quista::simulator

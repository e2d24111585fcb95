// What MOF, WQL and object paths agree on when they read text.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quista::simulator {

constexpr bool isDigit(wchar_t character) {
    return character >= L'0' && character <= L'9';
}

/// Names begin with a letter, an underscore or any character beyond ASCII.
constexpr bool isNameStart(wchar_t character) {
    return (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z') ||
           character == L'_' || character >= 0x80;
}

constexpr bool isNamePart(wchar_t character) {
    return isNameStart(character) || isDigit(character);
}

constexpr bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

/// Appends a digit to a number; false when the number would need more than 64 bits.
bool appendDigit(std::uint64_t& number, unsigned digit, unsigned base = 10);

/// An integer of either sign with 64 bits of magnitude.
struct ScannedInteger {
    bool negative = false;
    std::uint64_t magnitude = 0;
};

/// The decimal integer, with or without sign, that fills the whole text.
std::optional<ScannedInteger> scanDecimal(std::wstring_view text);

}  // namespace quista::simulator

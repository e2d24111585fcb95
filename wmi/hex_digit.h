// Hexadecimal digits.
#pragma once

namespace quista {

/// Value of a hexadecimal digit in either case; 0 for any other character.
constexpr int HexDigitValue(wchar_t digit) {
    if (digit >= L'0' && digit <= L'9') return digit - L'0';
    if (digit >= L'A' && digit <= L'F') return digit - L'A' + 10;
    if (digit >= L'a' && digit <= L'f') return digit - L'a' + 10;
    return 0;
}

}  // namespace quista

#include "wmi/hex_digit.h"

#include <gtest/gtest.h>
#include <string>

namespace quista::test {
namespace {

TEST(HexDigitTest, DigitsOfBothCasesHaveTheirValue) {
    const std::wstring upper = L"0123456789ABCDEF";
    const std::wstring lower = L"0123456789abcdef";
    for (int value = 0; value < 16; ++value) {
        const auto index = static_cast<std::size_t>(value);
        EXPECT_EQ(HexDigitValue(upper[index]), value);
        EXPECT_EQ(HexDigitValue(lower[index]), value);
    }
}

TEST(HexDigitTest, EveryOtherCharacterIsZero) {
    const std::wstring digits = L"0123456789ABCDEFabcdef";
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        const auto character = static_cast<wchar_t>(code);
        if (digits.find(character) != std::wstring::npos) continue;
        EXPECT_EQ(HexDigitValue(character), 0) << "character " << code;
    }
}

}  // namespace
}  // namespace quista::test

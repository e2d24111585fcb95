#include "cli/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quista::cli {
namespace {

using testing::ElementsAre;

TEST(TextTest, ConversionKeepsCharactersOutsideTheBasicPlane) {
    const std::wstring wide = L"K\u00f6ln \U0001F4BE";
    EXPECT_EQ(toUtf8(wide), "K\xc3\xb6ln \xf0\x9f\x92\xbe");
    EXPECT_EQ(toWide(toUtf8(wide)), wide);
    EXPECT_EQ(toUtf8(L""), "");
    EXPECT_EQ(toWide(""), L"");
}

TEST(TextTest, UnpairedSurrogateBecomesTheReplacementCharacter) {
    EXPECT_EQ(toUtf8(std::wstring(1, wchar_t{0xD800})), "\xef\xbf\xbd");
}

TEST(TextTest, ControlCharactersAreWrittenOut) {
    EXPECT_EQ(printable("a\x1b[31mb\r\n\x7f"), "a\\x1b[31mb\\x0d\\x0a\\x7f");
    EXPECT_EQ(printable("\xc2\x9b"), "\\x9b");
    EXPECT_EQ(printable("gr\xc3\xbc\xc3\x9f"), "gr\xc3\xbc\xc3\x9f");
}

TEST(TextTest, WidthCountsColumnsNotBytes) {
    EXPECT_EQ(displayWidth(""), 0u);
    EXPECT_EQ(displayWidth("abc"), 3u);
    EXPECT_EQ(displayWidth("K\xc3\xb6ln"), 4u);
    EXPECT_EQ(displayWidth("\xe5\x8f\xb0\xe5\x8c\x97"), 4u) << "two wide characters";
    EXPECT_EQ(displayWidth("e\xcc\x81"), 1u) << "a combining accent";
    EXPECT_EQ(displayWidth("\xf0\x9f\x92\xbe"), 2u);
}

TEST(TextTest, CutSequenceAtTheEndIsNotReadBeyond) {
    EXPECT_EQ(displayWidth("a\xe5\x8f"), 2u);
}

TEST(TextTest, WrapBreaksAtBlanks) {
    EXPECT_THAT(wrap("one two three", 7), ElementsAre("one two", "three"));
    EXPECT_THAT(wrap("one two three", 8), ElementsAre("one two", "three"));
    EXPECT_THAT(wrap("one", 7), ElementsAre("one"));
    EXPECT_THAT(wrap("", 7), ElementsAre(""));
}

TEST(TextTest, WrapBreaksWordsThatAreTooLong) {
    EXPECT_THAT(wrap("abcdefgh ij", 3), ElementsAre("abc", "def", "gh", "ij"));
}

TEST(TextTest, WrapNeverSplitsACharacter) {
    EXPECT_THAT(wrap("\xe5\x8f\xb0\xe5\x8c\x97", 3), ElementsAre("\xe5\x8f\xb0", "\xe5\x8c\x97"));
    EXPECT_THAT(wrap("\xe5\x8f\xb0", 1), ElementsAre("\xe5\x8f\xb0"));
}

TEST(TextTest, ComparisonWithoutCase) {
    EXPECT_TRUE(equalIgnoringCase("kvA7", "KVa7"));
    EXPECT_FALSE(equalIgnoringCase("kvA7", "kvA8"));
    EXPECT_FALSE(equalIgnoringCase("kvA7", "kvA"));
}

}  // namespace
}  // namespace quista::cli

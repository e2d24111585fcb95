#include "cli/console_text.h"

#include <gmock/gmock.h>

#include "cli/text_style.h"

namespace quista::cli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ConsoleTextTest, SequencesStandBeforeTheirText) {
    EXPECT_THAT(splitAtSequences("a \x1b[32mok\x1b[0m b"),
                ElementsAre(ConsolePiece{"", "a "}, ConsolePiece{"\x1b[32m", "ok"},
                            ConsolePiece{"\x1b[0m", " b"}));
}

TEST(ConsoleTextTest, PlainTextIsOnePiece) {
    EXPECT_THAT(splitAtSequences("multipath"), ElementsAre(ConsolePiece{"", "multipath"}));
    EXPECT_THAT(splitAtSequences(""), IsEmpty());
}

TEST(ConsoleTextTest, SequencesAtTheEdgesAreKept) {
    EXPECT_THAT(splitAtSequences("\x1b[1mX\x1b[0m"),
                ElementsAre(ConsolePiece{"", ""}, ConsolePiece{"\x1b[1m", "X"},
                            ConsolePiece{"\x1b[0m", ""}));
    EXPECT_THAT(splitAtSequences("a\x1b[3"),
                ElementsAre(ConsolePiece{"", "a"}, ConsolePiece{"\x1b[3", ""}))
        << "one that does not end";
}

TEST(ConsoleTextTest, ColoursKeepTheBackground) {
    constexpr WORD kOriginal =
        BACKGROUND_BLUE | FOREGROUND_RED | FOREGROUND_GREEN | FOREGROUND_BLUE;
    EXPECT_EQ(attributesFor(colorOf(Tone::kGood), kOriginal), BACKGROUND_BLUE | FOREGROUND_GREEN);
    EXPECT_EQ(attributesFor(colorOf(Tone::kWarning), kOriginal),
              BACKGROUND_BLUE | FOREGROUND_RED | FOREGROUND_GREEN);
    EXPECT_EQ(attributesFor(colorOf(Tone::kBad), kOriginal), BACKGROUND_BLUE | FOREGROUND_RED);
    EXPECT_EQ(attributesFor(kBold, kOriginal), kOriginal | FOREGROUND_INTENSITY);
}

TEST(ConsoleTextTest, EndOfAColourBringsTheOriginalBack) {
    const TextStyle style{.width = {}, .hasColor = true};
    const std::string text = colored("ok", colorOf(Tone::kGood), style);
    EXPECT_EQ(attributesFor(splitAtSequences(text).back().sequence, 7), 7);
    EXPECT_EQ(attributesFor("", 7), 7);
}

}  // namespace
}  // namespace quista::cli

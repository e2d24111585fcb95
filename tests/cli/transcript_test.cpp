// What README and manual show of the tool is what it does.
#include <algorithm>
#include <gtest/gtest.h>
#include <regex>
#include <string_view>

#include "cli/text.h"
#include "tests/cli/tool_test.h"

namespace quista::test {
namespace {

// A command line with the lines that it is said to print: standard output, then standard error,
// then the exit status where it is not 0.
struct Transcript {
    std::string command;
    std::vector<std::string> lines;
};

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        std::string line = text.substr(start, end - start);
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
        lines.push_back(std::move(line));
        start = end + 1;
    }
    return lines;
}

bool isFence(const std::string& line) {
    return line.starts_with("```");
}

void dropBlankEnd(std::vector<std::string>& lines) {
    while (!lines.empty() && lines.back().empty()) lines.pop_back();
}

// Transcripts in fenced blocks, each command behind "$ ".
std::vector<Transcript> fencedTranscripts(const std::string& text) {
    std::vector<Transcript> transcripts;
    bool isInside = false;
    bool isOpen = false;
    for (const std::string& line : linesOf(text)) {
        if (isFence(line)) {
            isInside = !isInside;
            isOpen = false;
        } else if (isInside && line.starts_with("$ ")) {
            transcripts.push_back({line.substr(2), {}});
            isOpen = true;
        } else if (isOpen) {
            transcripts.back().lines.push_back(line);
        }
    }
    for (Transcript& transcript : transcripts) dropBlankEnd(transcript.lines);
    return transcripts;
}

// Transcripts in indented blocks, each command behind "> ".
std::vector<Transcript> indentedTranscripts(const std::string& text) {
    constexpr std::string_view kIndent = "    ";
    std::vector<Transcript> transcripts;
    bool isOpen = false;
    for (const std::string& line : linesOf(text)) {
        if (!line.empty() && !line.starts_with(kIndent)) isOpen = false;
        const std::string content = line.substr(std::min(line.size(), kIndent.size()));
        if (line.starts_with(kIndent) && content.starts_with("> ")) {
            transcripts.push_back({content.substr(2), {}});
            isOpen = true;
        } else if (isOpen) {
            transcripts.back().lines.push_back(content);
        }
    }
    for (Transcript& transcript : transcripts) dropBlankEnd(transcript.lines);
    return transcripts;
}

std::wstring argumentsOf(std::string command) {
    bool hasHost = true;
    if (command.starts_with("scripts/demo ")) {
        hasHost = command.find("--simulate") != std::string::npos;
        command.replace(0, std::string_view("scripts/demo").size(), "quistactl");
    }
    EXPECT_TRUE(command.starts_with("quistactl ")) << command;
    std::string arguments = command.substr(std::string_view("quistactl ").size());
    if (!hasHost) arguments = "--simulate standard " + arguments;
    return cli::toWide(arguments);
}

// Dates are those of the build.
std::string withoutDates(const std::string& line) {
    static const std::regex kDate(R"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d)");
    return std::regex_replace(line, kDate, "DATE");
}

constexpr std::string_view kDots = "...";

// Three dots stand for the beginning of a line.
bool isShownAs(const std::string& printed, const std::string& shown) {
    if (shown.starts_with(kDots)) return printed.ends_with(shown.substr(kDots.size()));
    return withoutDates(printed) == withoutDates(shown);
}

using Line = std::vector<std::string>::const_iterator;

// A line of three dots alone stands for any number of lines.
bool areShownAs(Line printed, Line printedEnd, Line shown, Line shownEnd) {
    if (shown == shownEnd) return printed == printedEnd;
    if (*shown == kDots) {
        for (Line rest = printed;; ++rest) {
            if (areShownAs(rest, printedEnd, shown + 1, shownEnd)) return true;
            if (rest == printedEnd) return false;
        }
    }
    return printed != printedEnd && isShownAs(*printed, *shown) &&
           areShownAs(printed + 1, printedEnd, shown + 1, shownEnd);
}

std::vector<std::string> printedBy(const Transcript& transcript) {
    const ToolRun run = runProgramFile(argumentsOf(transcript.command));
    std::string text = run.out + run.err;
    if (run.exitCode != 0) text += "(exit status " + std::to_string(run.exitCode) + ")\n";
    return linesOf(text);
}

class TranscriptTest : public ToolTest {
  protected:
    static void expectTrue(const std::vector<Transcript>& transcripts) {
        for (const Transcript& transcript : transcripts) {
            const std::vector<std::string> printed = printedBy(transcript);
            EXPECT_TRUE(areShownAs(printed.begin(), printed.end(), transcript.lines.begin(),
                                   transcript.lines.end()))
                << transcript.command << "\nprints\n"
                << testing::PrintToString(printed) << "\nand is shown with\n"
                << testing::PrintToString(transcript.lines);
        }
    }
};

TEST_F(TranscriptTest, Readme) {
    const auto transcripts = fencedTranscripts(readFile(QUISTA_README).value_or(""));
    EXPECT_GE(transcripts.size(), 10u);
    expectTrue(transcripts);
}

TEST_F(TranscriptTest, Manual) {
    ASSERT_EQ(runTool({"simulate", "new", "host.mof"}).exitCode, 0);
    const auto transcripts = indentedTranscripts(readFile(QUISTA_MANUAL).value_or(""));
    EXPECT_GE(transcripts.size(), 10u);
    expectTrue(transcripts);
}

TEST_F(TranscriptTest, OtherLinesAreNoticed) {
    const auto matches = [](std::vector<std::string> printed, std::vector<std::string> shown) {
        return areShownAs(printed.begin(), printed.end(), shown.begin(), shown.end());
    };
    EXPECT_TRUE(matches({"a", "b", "c"}, {"a", "b", "c"}));
    EXPECT_TRUE(matches({"a", "b", "c"}, {"a", "..."}));
    EXPECT_TRUE(matches({"a", "b", "c"}, {"...", "c"}));
    EXPECT_TRUE(matches({"Z:/x/file: done"}, {"...file: done"}));
    EXPECT_TRUE(matches({"at 11/20/2026 14:56:39"}, {"at 01/02/2003 04:05:06"}));
    EXPECT_FALSE(matches({"a", "b"}, {"a"}));
    EXPECT_FALSE(matches({"a"}, {"a", "b"}));
    EXPECT_FALSE(matches({"a", "x"}, {"...", "c"}));
    EXPECT_FALSE(matches({"a"}, {"b"}));
}

}  // namespace
}  // namespace quista::test

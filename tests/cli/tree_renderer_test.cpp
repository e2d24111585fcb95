#include "cli/tree_renderer.h"

#include <gtest/gtest.h>

#include "cli/text.h"

namespace quista::cli {
namespace {

Section section(std::string key, std::vector<Column> columns) {
    return {.key = std::move(key), .layout = kTree, .columns = std::move(columns), .rows = {}};
}

Section leaves(const std::vector<std::pair<std::string, std::string>>& values) {
    Section below = section("leaves", {{"", "name", Align::kLeft, kTree},
                                       {"", "exact", Align::kLeft, kJson},
                                       {"", "size", Align::kRight, kTree},
                                       {"", "state", Align::kLeft, kTree}});
    for (const auto& [name, size] : values) {
        below.rows.push_back({{textValue(name), textValue("hidden"), textValue(size),
                               shownAs("ok", "ok", Tone::kGood)},
                              {}});
    }
    return below;
}

// A root with two branches, of which the first has two leaves and the last has one.
Section tree() {
    Section branches = section("branches", {{"", "name", Align::kLeft, kTree}});
    branches.rows.push_back({{textValue("first")}, {leaves({{"a", "1 B"}, {"bcd", "20 GiB"}})}});
    branches.rows.push_back({{textValue("last")}, {leaves({{"e", "3 B"}})}});
    Section root = section("root", {{"", "name", Align::kLeft, kTree}});
    root.rows.push_back({{textValue("host")}, {branches}});
    return root;
}

TEST(TreeRendererTest, GuidesLeadToEveryRecord) {
    EXPECT_EQ(renderTree(tree(), {}),
              "host\n"
              "├─ first\n"
              "│  ├─ a       1 B  ok\n"
              "│  └─ bcd  20 GiB  ok\n"
              "└─ last\n"
              "   └─ e  3 B  ok\n");
}

TEST(TreeRendererTest, NarrowTerminalGetsNarrowGuides) {
    EXPECT_EQ(renderTree(tree(), {.width = 20}),
              "host\n"
              "├ first\n"
              "│ ├ a       1 B  ok\n"
              "│ └ bcd  20 GiB  ok\n"
              "└ last\n"
              "  └ e  3 B  ok\n");
}

TEST(TreeRendererTest, RecordThatDoesNotFitTakesSeveralLines) {
    EXPECT_EQ(renderTree(tree(), {.width = 16}),
              "host\n"
              "├ first\n"
              "│ ├ a  1 B  ok\n"
              "│ └ bcd  20 GiB\n"
              "│     ok\n"
              "└ last\n"
              "  └ e  3 B  ok\n");
}

TEST(TreeRendererTest, BrokenRecordKeepsTheGuideToItsChildren) {
    Section broken = tree();
    broken.rows[0].children[0].rows[0].cells[0] = textValue("a name with many words");
    EXPECT_EQ(renderTree(broken, {.width = 19}),
              "host\n"
              "├ a name with\n"
              "│ │ many words\n"
              "│ ├ a       1 B  ok\n"
              "│ └ bcd  20 GiB  ok\n"
              "└ last\n"
              "  └ e  3 B  ok\n");
}

TEST(TreeRendererTest, NoLineIsWiderThanTheTerminal) {
    for (std::size_t width = 10; width <= 60; ++width) {
        const std::string text = renderTree(tree(), {.width = width});
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = text.find('\n', start);
            EXPECT_LE(displayWidth(text.substr(start, end - start)), width) << text;
            start = end + 1;
        }
    }
}

TEST(TreeRendererTest, HopelesslyNarrowTerminalStillShowsEverything) {
    const std::string text = renderTree(tree(), {.width = 1});
    for (const char* part : {"host", "firs", "last", "bcd", "20", "GiB"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
    }
}

TEST(TreeRendererTest, ColourDoesNotDisturbTheColumns) {
    const std::string text = renderTree(tree(), {.width = {}, .hasColor = true});
    EXPECT_NE(text.find("│  ├─ a       1 B  \x1b[32mok\x1b[0m\n"), std::string::npos) << text;
}

TEST(TreeRendererTest, ControlCharactersCannotSteerTheTerminal) {
    Section section = tree();
    section.rows[0].cells[0] = textValue("a\x1b[2J\n");
    EXPECT_TRUE(renderTree(section, {}).starts_with("a\\x1b[2J\\x0a\n"));
}

TEST(TreeRendererTest, EmptyTreeShowsNothing) {
    EXPECT_EQ(renderTree(section("root", {}), {}), "");
}

}  // namespace
}  // namespace quista::cli

#include "cli/text_renderer.h"

#include <gtest/gtest.h>

namespace quista::cli {
namespace {

Section volumes() {
    Section section{.key = "volumes", .layout = kTable, .columns = {}, .rows = {}};
    section.columns = {{"NAME", "name", Align::kLeft, kEverywhere},
                       {"SIZE", "size", Align::kRight, kEverywhere},
                       {"", "exact", Align::kLeft, kJson},
                       {"STATE", "state", Align::kLeft, kEverywhere}};
    section.rows.push_back(
        {{textValue("db"), textValue("1.5 TiB"), nothing(), shownAs("ok", "ok", Tone::kGood)}, {}});
    section.rows.push_back(
        {{textValue("K\xc3\xb6ln \xe5\x8f\xb0"), textValue("8 B"), nothing(), nothing()}, {}});
    return section;
}

Section sentences() {
    Section section{.key = "errors", .layout = kTable, .columns = {}, .rows = {}};
    section.columns = {{"CODE", "code", Align::kRight, kEverywhere},
                       {"TEXT", "text", Align::kText, kEverywhere}};
    section.rows.push_back({{numberValue(7), textValue("one two three four five six seven")}, {}});
    return section;
}

Report reportOf(Section section) {
    Report report;
    report.sections.push_back(std::move(section));
    return report;
}

TEST(TextRendererTest, ColumnsAreAlignedByDisplayWidth) {
    EXPECT_EQ(renderText(reportOf(volumes()), {}),
              "NAME        SIZE  STATE\n"
              "db       1.5 TiB  ok\n"
              "K\xc3\xb6ln \xe5\x8f\xb0      8 B  -\n");
}

TEST(TextRendererTest, WithoutHeadersWidthsFollowTheContent) {
    Report report = reportOf(volumes());
    report.summary.push_back("2 volumes");
    EXPECT_EQ(renderText(report, {.width = {}, .hasColor = false, .hasHeaders = false}),
              "db       1.5 TiB  ok\n"
              "K\xc3\xb6ln \xe5\x8f\xb0      8 B  -\n");
}

TEST(TextRendererTest, SummaryStandsBelowTheTable) {
    Report report = reportOf(volumes());
    report.summary.push_back("2 volumes");
    EXPECT_TRUE(renderText(report, {}).ends_with("  -\n\n2 volumes\n"));
}

TEST(TextRendererTest, EmptyTableShowsNothing) {
    Section section = volumes();
    section.rows.clear();
    EXPECT_EQ(renderText(reportOf(section), {}), "");
}

TEST(TextRendererTest, ColumnsThatDoNotFitAreFoldedBelow) {
    EXPECT_EQ(renderText(reportOf(volumes()), {.width = 22}),
              "NAME        SIZE\n"
              "    STATE\n"
              "db       1.5 TiB\n"
              "    ok\n"
              "K\xc3\xb6ln \xe5\x8f\xb0      8 B\n"
              "    -\n");
}

TEST(TextRendererTest, TooNarrowTerminalGetsOneBlockPerRecord) {
    EXPECT_EQ(renderText(reportOf(volumes()), {.width = 10}),
              "NAME   db\n"
              "SIZE   1.5 TiB\n"
              "STATE  ok\n"
              "\n"
              "NAME   K\xc3\xb6ln \xe5\x8f\xb0\n"
              "SIZE   8 B\n"
              "STATE  -\n");
}

TEST(TextRendererTest, TableThatJustFitsStaysATable) {
    EXPECT_EQ(renderText(reportOf(volumes()), {.width = 23}), renderText(reportOf(volumes()), {}));
}

TEST(TextRendererTest, SentencesAreBrokenIntoLines) {
    EXPECT_EQ(renderText(reportOf(sentences()), {.width = 30}),
              "CODE  TEXT\n"
              "   7  one two three four five\n"
              "      six seven\n");
}

TEST(TextRendererTest, PipesGetWholeLines) {
    EXPECT_EQ(renderText(reportOf(sentences()), {}),
              "CODE  TEXT\n"
              "   7  one two three four five six seven\n");
}

TEST(TextRendererTest, DetailsHaveOneLinePerValueAndTheirTables) {
    Section section = volumes();
    section.layout = kDetails;
    section.rows.pop_back();
    Section child = sentences();
    child.layout = kNested;
    section.rows[0].children.push_back(child);
    EXPECT_EQ(renderText(reportOf(section), {}),
              "NAME   db\n"
              "SIZE   1.5 TiB\n"
              "STATE  ok\n"
              "\n"
              "CODE  TEXT\n"
              "   7  one two three four five six seven\n");
}

TEST(TextRendererTest, ColourDoesNotDisturbTheColumns) {
    EXPECT_EQ(renderText(reportOf(volumes()), {.width = {}, .hasColor = true}),
              "\x1b[1mNAME\x1b[0m        \x1b[1mSIZE\x1b[0m  \x1b[1mSTATE\x1b[0m\n"
              "db       1.5 TiB  \x1b[32mok\x1b[0m\n"
              "K\xc3\xb6ln \xe5\x8f\xb0      8 B  -\n");
}

TEST(TextRendererTest, ControlCharactersCannotSteerTheTerminal) {
    Section section = volumes();
    section.rows.resize(1);
    section.rows[0].cells[0] = textValue("a\x1b[2J\n");
    EXPECT_EQ(renderText(reportOf(section), {.width = {}, .hasColor = false, .hasHeaders = false}),
              "a\\x1b[2J\\x0a  1.5 TiB  ok\n");
}

TEST(TextRendererTest, MessagesSayWhatTheLibrarySaid) {
    Report report;
    report.add(Severity::kError, "cannot list the LUNs", DSM_WMI_FAILURE, "Look there.");
    report.add(Severity::kWarning, "2 LUNs have the serial number A");
    report.add(Severity::kInfo, "no LUNs found");
    EXPECT_EQ(renderMessages(report, false),
              "quistactl: error: cannot list the LUNs: Failure in WMI processing "
              "(DSM_WMI_FAILURE, 14)\n"
              "  Look there.\n"
              "quistactl: warning: 2 LUNs have the serial number A\n"
              "quistactl: no LUNs found\n");
}

TEST(TextRendererTest, StatusWithoutTextIsNamed) {
    Report report;
    report.add(Severity::kError, "cannot write the key", DSM_REGISTRY_WRITE_FAILED);
    EXPECT_EQ(renderMessages(report, false),
              "quistactl: error: cannot write the key: no text (DSM_REGISTRY_WRITE_FAILED, 47)\n");
}

}  // namespace
}  // namespace quista::cli

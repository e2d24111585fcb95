#include "cli/json_renderer.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quista::cli {
namespace {

using nlohmann::json;

Report reportWith(Value value) {
    Section section{.key = "things", .layout = kTable, .columns = {}, .rows = {}};
    section.columns = {{"VALUE", "value", Align::kLeft, kEverywhere},
                       {"ONLY TEXT", "onlyText", Align::kLeft, kText}};
    section.rows.push_back({{std::move(value), textValue("x")}, {}});
    Report report;
    report.command = "things";
    report.sections.push_back(std::move(section));
    return report;
}

json firstThing(Value value) {
    return json::parse(renderJson(reportWith(std::move(value))))["things"][0];
}

TEST(JsonRendererTest, DocumentSaysWhatItIs) {
    Report report = reportWith(numberValue(1));
    report.arguments = {"things", "--json"};
    const json document = json::parse(renderJson(report));
    EXPECT_EQ(document["schemaVersion"], 1);
    EXPECT_EQ(document["tool"], "quistactl");
    EXPECT_FALSE(document["toolVersion"].get<std::string>().empty());
    EXPECT_EQ(document["command"], "things");
    EXPECT_EQ(document["arguments"], json({"things", "--json"}));
    EXPECT_EQ(document["exitCode"], 0);
    EXPECT_EQ(document["status"]["name"], "DSM_SUCCESS");
    EXPECT_TRUE(document["messages"].empty());
}

TEST(JsonRendererTest, SchemaVersionComesFirst) {
    EXPECT_TRUE(renderJson(Report{}).starts_with("{\n  \"schemaVersion\": 1,\n"));
}

TEST(JsonRendererTest, OnlyJsonColumnsAppear) {
    const json thing = firstThing(textValue("a"));
    EXPECT_EQ(thing, json({{"value", "a"}}));
}

TEST(JsonRendererTest, ValuesKeepTheirTypes) {
    EXPECT_EQ(firstThing(nothing())["value"], nullptr);
    EXPECT_EQ(firstThing(yesOrNo(true))["value"], true);
    EXPECT_EQ(firstThing(shownAs("1.0 KiB", std::uint64_t{1024}))["value"], 1024);
}

TEST(JsonRendererTest, NamedNumberHasBoth) {
    const json thing = firstThing(namedValue("Round Robin", 2));
    EXPECT_EQ(thing["value"], 2);
    EXPECT_EQ(thing["valueName"], "Round Robin");
}

TEST(JsonRendererTest, NumbersThatDoublesCannotHoldAreAlsoText) {
    const std::uint64_t largest = (std::uint64_t{1} << 53) - 1;
    EXPECT_FALSE(firstThing(numberValue(largest)).contains("valueText"));
    const json thing = firstThing(numberValue(largest + 1));
    EXPECT_EQ(thing["value"], largest + 1);
    EXPECT_EQ(thing["valueText"], "9007199254740992");
    EXPECT_EQ(firstThing(numberValue(UINT64_MAX))["valueText"], "18446744073709551615");
}

TEST(JsonRendererTest, TextsAreEscapedAndInvalidBytesReplaced) {
    EXPECT_EQ(firstThing(textValue("\"a\\b\"\x01\n"))["value"], "\"a\\b\"\x01\n");
    EXPECT_EQ(firstThing(textValue("a\xff"))["value"], "a\xef\xbf\xbd");
}

TEST(JsonRendererTest, MessagesCarrySeverityStatusAndHint) {
    Report report;
    report.add(Severity::kError, "cannot list the LUNs", DSM_WMI_FAILURE, "Look there.");
    report.add(Severity::kInfo, "no LUNs found");
    report.fail(ExitCode::kFailed, DSM_WMI_FAILURE);
    const json document = json::parse(renderJson(report));
    EXPECT_EQ(document["exitCode"], 1);
    EXPECT_EQ(
        document["status"],
        json({{"code", 14}, {"name", "DSM_WMI_FAILURE"}, {"text", "Failure in WMI processing"}}));
    EXPECT_EQ(document["messages"][0]["severity"], "error");
    EXPECT_EQ(document["messages"][0]["status"]["code"], 14);
    EXPECT_EQ(document["messages"][0]["hint"], "Look there.");
    EXPECT_EQ(document["messages"][1], json({{"severity", "info"}, {"text", "no LUNs found"}}));
}

TEST(JsonRendererTest, OwnFailureHasNoStatusOfTheLibrary) {
    Report report;
    report.fail(ExitCode::kUsage, DSM_SUCCESS);
    EXPECT_TRUE(json::parse(renderJson(report))["status"].is_null());
}

TEST(JsonRendererTest, SingleSectionIsAnObjectAndChildrenAreNested) {
    Report report = reportWith(numberValue(1));
    Section child = report.sections[0];
    child.key = "parts";
    report.sections[0].isSingle = true;
    report.sections[0].rows[0].children.push_back(child);
    const json document = json::parse(renderJson(report));
    EXPECT_EQ(document["things"]["value"], 1);
    EXPECT_EQ(document["things"]["parts"][0]["value"], 1);
}

TEST(JsonRendererTest, FirstFailureDecides) {
    Report report;
    report.fail(ExitCode::kFailed, DSM_WMI_FAILURE);
    report.fail(ExitCode::kNotFound, DSM_SERIAL_NOT_FOUND);
    EXPECT_EQ(report.exitCode, ExitCode::kFailed);
    EXPECT_EQ(report.status, static_cast<unsigned long>(DSM_WMI_FAILURE));
}

}  // namespace
}  // namespace quista::cli

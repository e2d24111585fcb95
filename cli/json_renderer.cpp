#include "cli/json_renderer.h"

#include <nlohmann/json.hpp>

#include "cli/names.h"
#include "cli/version.h"

namespace quista::cli {
namespace {

using Json = nlohmann::ordered_json;

// From here on a reader that keeps numbers as doubles loses digits.
constexpr std::uint64_t kFirstInexact = std::uint64_t{1} << 53;

void put(Json& object, const std::string& key, const Data& data) {
    if (const auto* named = std::get_if<NamedNumber>(&data)) {
        object[key] = named->number;
        object[key + "Name"] = named->name;
        return;
    }
    std::visit(
        [&](const auto& exact) {
            if constexpr (!std::is_same_v<decltype(exact), const NamedNumber&>) object[key] = exact;
        },
        data);
    const auto* number = std::get_if<std::uint64_t>(&data);
    if (number != nullptr && *number >= kFirstInexact) {
        object[key + "Text"] = std::to_string(*number);
    }
}

Json sectionJson(const Section& section);

Json rowJson(const Section& section, const Row& row) {
    Json object = Json::object();
    for (std::size_t i = 0; i < section.columns.size(); ++i) {
        const Column& column = section.columns[i];
        if ((column.views & View::kJson) != 0) put(object, column.key, row.cells[i].data);
    }
    for (const Section& child : row.children) object[child.key] = sectionJson(child);
    return object;
}

Json sectionJson(const Section& section) {
    if (section.isSingle) return rowJson(section, section.rows.front());
    Json array = Json::array();
    for (const Row& row : section.rows) array.push_back(rowJson(section, row));
    return array;
}

Json statusJson(unsigned long status) {
    return {{"code", status}, {"name", statusName(status)}, {"text", statusText(status)}};
}

std::string_view severityName(Severity severity) {
    switch (severity) {
        case Severity::kInfo:
            return "info";
        case Severity::kWarning:
            return "warning";
        case Severity::kError:
            break;
    }
    return "error";
}

Json messageJson(const Message& message) {
    Json object = {{"severity", severityName(message.severity)}, {"text", message.text}};
    if (message.status != DSM_SUCCESS) object["status"] = statusJson(message.status);
    if (message.step) {
        object["failedStep"] = {{"place", message.step->place},
                                {"code", message.step->code},
                                {"name", statusName(message.step->code)}};
    }
    if (!message.hint.empty()) object["hint"] = message.hint;
    return object;
}

// Null for a failure that is the tool's own, such as wrong arguments.
Json reportStatus(const Report& report) {
    const bool isOwnFailure = report.exitCode != ExitCode::kDone && report.status == DSM_SUCCESS;
    return isOwnFailure ? Json(nullptr) : statusJson(report.status);
}

}  // namespace

std::string renderJson(const Report& report) {
    Json document = {
        {"schemaVersion", kSchemaVersion}, {"tool", "quistactl"},
        {"toolVersion", kToolVersion},     {"command", report.command},
        {"arguments", report.arguments},   {"exitCode", static_cast<int>(report.exitCode)},
        {"status", reportStatus(report)},  {"messages", Json::array()}};
    for (const Message& message : report.messages) {
        document["messages"].push_back(messageJson(message));
    }
    if (!report.plainText.empty()) document["text"] = report.plainText;
    for (const Section& section : report.sections) document[section.key] = sectionJson(section);
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace quista::cli

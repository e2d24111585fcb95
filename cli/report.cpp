#include "cli/report.h"

#include <fmt/format.h>
#include <utility>

namespace quista::cli {

void Report::add(Severity severity, std::string text, unsigned long messageStatus,
                 std::string hint) {
    messages.push_back({severity, std::move(text), messageStatus, std::move(hint), {}});
}

void Report::fail(ExitCode code, unsigned long failureStatus) {
    if (exitCode != ExitCode::kDone) return;
    exitCode = code;
    status = failureStatus;
}

Value textValue(std::string text) {
    Data data = text;
    return {std::move(text), std::move(data)};
}

Value textOrNothing(const std::string* text) {
    return text != nullptr ? textValue(*text) : Value{"-", nullptr};
}

Value numberValue(std::uint64_t number) {
    return {std::to_string(number), number};
}

Value yesOrNo(bool value) {
    return {value ? "yes" : "no", value};
}

Value namedValue(std::string_view name, std::uint64_t number, Tone tone) {
    return {fmt::format("{} ({})", name, number), NamedNumber{number, std::string(name)}, tone};
}

Value shownAs(std::string text, Data data, Tone tone) {
    return {std::move(text), std::move(data), tone};
}

}  // namespace quista::cli

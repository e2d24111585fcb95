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

Value nothing() {
    return {"-", nullptr};
}

Value optionalText(const std::optional<std::string>& text) {
    return text ? textValue(*text) : nothing();
}

Value textUnlessEmpty(const std::string& text) {
    return text.empty() ? nothing() : textValue(text);
}

Value optionalNumber(const std::optional<std::uint64_t>& number) {
    return number ? numberValue(*number) : nothing();
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

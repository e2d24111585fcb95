#include <charconv>
#include <fmt/format.h>
#include <optional>
#include <string_view>

#include "cli/command.h"
#include "cli/failure.h"
#include "cli/names.h"

namespace quista::cli {
namespace {

// One meaning of a code. Small numbers have two: the library's and the system's, and the log
// MPIOlog.dat prints the system's text for both.
struct Meaning {
    std::uint32_t code;
    const char* source;
    std::string name;
    std::string text;
};

constexpr Field<Meaning> kErrorFields[] = {
    {"CODE", "code", "the code", [](const Meaning& meaning) { return numberValue(meaning.code); },
     kEverywhere, Align::kRight},
    {"HEX", "hex", "the code in hexadecimal",
     [](const Meaning& meaning) { return textValue(fmt::format("0x{:08x}", meaning.code)); }},
    {"SOURCE", "source", "whose code it is: quista, WMI or Windows",
     [](const Meaning& meaning) { return textValue(meaning.source); }},
    {"NAME", "name", "its name",
     [](const Meaning& meaning) { return textUnlessEmpty(meaning.name); }},
    {"TEXT", "text", "its message text",
     [](const Meaning& meaning) { return textUnlessEmpty(meaning.text); }, kEverywhere,
     Align::kText},
};

Fields<Meaning> errorFields() {
    return kErrorFields;
}

std::optional<std::uint32_t> parseCode(std::string_view text) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (isHex) text.remove_prefix(2);
    std::uint32_t code = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, code, isHex ? 16 : 10);
    if (error != std::errc() || stop != end) return std::nullopt;
    return code;
}

std::string checkCode(const std::string& text) {
    if (parseCode(text)) return {};
    return fmt::format("expected a 32-bit number, decimal or 0x..., got '{}'", text);
}

std::vector<Meaning> libraryMeanings() {
    std::vector<Meaning> meanings;
    for (const NamedCode& row : statusCodes()) {
        meanings.push_back({row.code, "quista", row.name, statusText(row.code)});
    }
    return meanings;
}

std::vector<Meaning> meaningsOf(std::uint32_t code) {
    std::vector<Meaning> meanings;
    if (const auto name = nameIn(statusCodes(), code); !name.empty()) {
        meanings.push_back({code, "quista", std::string(name), statusText(code)});
    }
    const std::string systemsText = systemText(code);
    if (const auto name = nameIn(wmiCodes(), code); !name.empty()) {
        meanings.push_back({code, "WMI", std::string(name), systemsText});
    } else if (!systemsText.empty()) {
        meanings.push_back({code, "Windows", "", systemsText});
    }
    return meanings;
}

class ErrorsCommand final : public Command {
  public:
    const char* name() const override { return "errors"; }
    const char* summary() const override { return "List the status codes, or explain one code"; }
    const char* example() const override {
        return "quistactl errors 0x80041010    what a code of MPIOlog.dat means";
    }
    std::vector<FieldHelp> fields() const override { return fieldHelp(errorFields()); }

    void declare(Arguments& arguments) override {
        arguments.optional("CODE", code_, "Status code, Win32 error or HRESULT", checkCode);
    }

    void execute(const Context&, Report& report) override {
        const auto code = parseCode(code_);
        const std::vector<Meaning> meanings = code ? meaningsOf(*code) : libraryMeanings();
        report.sections.push_back(sectionOf("errors", kTable, errorFields(), meanings));
        if (!meanings.empty()) return;
        report.add(Severity::kError, fmt::format("no meaning is known of the code {}", code_));
        report.fail(ExitCode::kNotFound, DSM_SUCCESS);
    }

  private:
    std::string code_;
};

}  // namespace

std::unique_ptr<Command> makeErrorsCommand() {
    return std::make_unique<ErrorsCommand>();
}

}  // namespace quista::cli

// What a command has to say, independent of how it is shown. Text and JSON are two renderings of
// the same report.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/exit_code.h"
#include "quista/status.h"

namespace quista::cli {

/// How a value is to be taken. Colour follows it, and never carries it alone.
enum class Tone { kPlain, kGood, kWarning, kBad };

/// A number that has a name. JSON has both: the name under the key with "Name" behind it.
struct NamedNumber {
    std::uint64_t number = 0;
    std::string name;
};

using Data = std::variant<std::nullptr_t, bool, std::uint64_t, std::string, NamedNumber>;

/// One value in both of its forms.
struct Value {
    std::string text;  ///< for people: "1.5 TiB"
    Data data;         ///< exact: 1649267441664
    Tone tone = Tone::kPlain;
};

/// kText columns hold sentences: aligned left, and broken into lines on a narrow terminal.
enum class Align { kLeft, kRight, kText };

/// Where a column appears.
enum View : unsigned {
    kTable = 1,    ///< table of its own
    kNested = 2,   ///< table below the record it belongs to
    kDetails = 4,  ///< one line per value
    kJson = 8,
    kTree = 16,  ///< one line of a tree
    kText = kTable | kNested | kDetails,
    kEverywhere = kText | kJson,
};

struct Column {
    std::string header;  ///< upper case
    std::string key;     ///< JSON key
    Align align = Align::kLeft;
    unsigned views = kEverywhere;
};

struct Section;

struct Row {
    std::vector<Value> cells;  ///< one per column
    std::vector<Section> children;
};

/// Records of one kind.
struct Section {
    std::string key;             ///< JSON key
    View layout = View::kTable;  ///< one of the views; kJson: not shown as text
    bool isSingle = false;       ///< a JSON object instead of an array
    std::vector<Column> columns;
    std::vector<Row> rows;
};

enum class Severity { kInfo, kWarning, kError };

/// The step that a call of the library failed in, as its log names it.
struct FailedStep {
    std::string place;
    std::uint32_t code = 0;
};

/// Goes to standard error, and into the JSON document.
struct Message {
    Severity severity = Severity::kError;
    std::string text;
    unsigned long status = DSM_SUCCESS;  ///< the library's status behind it, if any
    std::string hint;                    ///< what the user can do; may be empty
    std::optional<FailedStep> step{};
};

struct Report {
    std::string command;
    std::vector<std::string> arguments;
    ExitCode exitCode = ExitCode::kDone;
    unsigned long status = DSM_SUCCESS;
    std::vector<Message> messages;
    std::vector<Section> sections;
    std::vector<std::string> summary;  ///< lines below the tables; JSON has a section for it
    std::string plainText;             ///< help or version, instead of sections

    void add(Severity severity, std::string text, unsigned long messageStatus = DSM_SUCCESS,
             std::string hint = {});
    /// Makes the report one of a failure, unless an earlier one already did.
    void fail(ExitCode code, unsigned long failureStatus);
};

Value textValue(std::string text);
// "-" and null where there is nothing.
Value nothing();
Value optionalText(const std::optional<std::string>& text);
Value textUnlessEmpty(const std::string& text);
Value optionalNumber(const std::optional<std::uint64_t>& number);
Value numberValue(std::uint64_t number);
Value yesOrNo(bool value);
/// "Round Robin (2)"
Value namedValue(std::string_view name, std::uint64_t number, Tone tone = Tone::kPlain);
/// A text for people with its exact form beside it.
Value shownAs(std::string text, Data data, Tone tone = Tone::kPlain);

}  // namespace quista::cli

#include "cli/command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <numeric>

#include "cli/arguments.h"
#include "cli/failure.h"
#include "cli/text.h"
#include "cli/version.h"

namespace quista::cli {
namespace {

constexpr unsigned kLongestTimeout = 86400;

// Steps of inserting, deleting or replacing a character, or of exchanging two neighbours, between
// two words.
std::size_t distance(const std::string& left, const std::string& right) {
    using Line = std::vector<std::size_t>;
    std::vector<Line> steps(left.size() + 1, Line(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) steps[i][0] = i;
    std::iota(steps[0].begin(), steps[0].end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t replaced =
                steps[i - 1][j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            steps[i][j] = std::min({replaced, steps[i - 1][j] + 1, steps[i][j - 1] + 1});
            const bool areExchanged =
                i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
            if (areExchanged) steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
        }
    }
    return steps.back().back();
}

// The word nearest to a mistyped one; empty when none comes near.
std::string nearest(const std::string& typed, const std::vector<std::string>& words) {
    std::string best;
    std::size_t bestDistance = std::min<std::size_t>(3, typed.size());
    for (const std::string& word : words) {
        const std::size_t current = distance(typed, word);
        if (current < bestDistance) {
            best = word;
            bestDistance = current;
        }
    }
    return best;
}

std::string joined(const std::vector<std::string>& words) {
    return fmt::format("{}", fmt::join(words, ", "));
}

std::string suggestion(const std::string& typed, const std::vector<std::string>& words) {
    const std::string word = nearest(typed, words);
    return word.empty() ? std::string() : fmt::format("; did you mean '{}'?", word);
}

std::vector<std::string> optionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    return names;
}

std::string checkTimeout(const std::string& text) {
    unsigned seconds = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    if (error == std::errc() && stop == end && seconds <= kLongestTimeout) return {};
    return fmt::format("expected seconds, 0 to {}, got '{}'", kLongestTimeout, text);
}

std::string checkColor(const std::string& text) {
    if (text == "auto" || text == "always" || text == "never") return {};
    return fmt::format("expected auto, always or never, got '{}'", text);
}

ColorChoice colorChoice(const std::string& text) {
    if (text == "always") return ColorChoice::kAlways;
    return text == "never" ? ColorChoice::kNever : ColorChoice::kAuto;
}

// The options stand before the command as well as behind it.
void declareOptions(CLI::App& app, Options& options) {
    app.add_option("--simulate", options.simulatedHost,
                   "Use a simulated host: a sample (standard, degraded, empty, bare) or a MOF file")
        ->check(CLI::Validator(checkNotEmpty, ""))
        ->type_name("HOST");
    app.add_flag("--json", options.isJson, "Print one JSON document");
    app.add_flag_callback(
        "--no-headers", [&options] { options.hasHeaders = false; },
        "Leave out column headers and summary");
    app.add_option_function<std::string>(
           "--color", [&options](const std::string& text) { options.color = colorChoice(text); },
           "Colour states: auto (on a console), always, never")
        ->check(CLI::Validator(checkColor, ""))
        ->type_name("WHEN");
    app.add_option("--timeout", options.timeoutSeconds,
                   "Give up after so many seconds; 0 waits without limit")
        ->check(CLI::Validator(checkTimeout, ""))
        ->type_name("SECONDS")
        ->capture_default_str();
}

std::string footerOf(const Command& command) {
    std::string text = fmt::format("Example:\n  {}\n", command.example());
    const std::vector<FieldHelp> fields = command.fields();
    if (fields.empty()) return text;
    text += "\nFields (column header, JSON key):\n";
    for (const FieldHelp& field : fields) {
        text += fmt::format("  {:<22}  {:<22}  {}\n", field.header, field.key, field.help);
    }
    return text;
}

}  // namespace

CommandLine::CommandLine()
    : commands_(makeCommands()),
      app_(std::make_unique<CLI::App>("Shows and steers multipath storage on Windows.",
                                      "quistactl")) {
    app_->set_version_flag("--version", fmt::format("quistactl {}", kToolVersion), "Print version");
    app_->set_help_flag("-h,--help", "Print help");
    app_->allow_windows_style_options(false);
    app_->allow_extras();
    app_->require_subcommand(0, 1);
    declareOptions(*app_, options_);
    for (const auto& command : commands_) declareCommand(*command);
    app_->footer(
        "Exit status: 0 done, 1 failed, 2 wrong arguments, 3 not found, 4 refused for "
        "safety,\n5 timed out. Example: quistactl luns --simulate standard");
}

CommandLine::~CommandLine() = default;

void CommandLine::declareCommand(Command& command) {
    const std::string name = command.name();
    const std::size_t blank = name.find(' ');
    CLI::App& parent = blank == std::string::npos ? *app_ : groupOf(name.substr(0, blank));
    const std::string word = blank == std::string::npos ? name : name.substr(blank + 1);
    CLI::App* app = parent.add_subcommand(word, command.summary());
    app->allow_windows_style_options(false);
    app->allow_extras();
    app->footer(footerOf(command));
    Arguments arguments(*app);
    command.declare(arguments);
    declareOptions(*app, options_);
}

CLI::App& CommandLine::groupOf(const std::string& name) {
    CLI::App*& group = groups_[name];
    if (group != nullptr) return *group;
    group = app_->add_subcommand(name, groupSummary(name));
    group->allow_windows_style_options(false);
    group->allow_extras();
    group->require_subcommand(0, 1);
    group->footer(fmt::format("quistactl {} ACTION --help shows an example of each action.", name));
    declareOptions(*group, options_);
    return *group;
}

Command* CommandLine::parse(std::vector<std::string> arguments) {
    // The parser takes the arguments from the back.
    std::reverse(arguments.begin(), arguments.end());
    try {
        app_->parse(arguments);
    } catch (const CLI::CallForVersion& request) {
        text_ = std::string(request.what()) + "\n";
        return nullptr;
    } catch (const CLI::CallForHelp&) {
        text_ = app_->help();
        return nullptr;
    } catch (const CLI::ArgumentMismatch& error) {
        const std::string text = error.what();
        throw UsageError(text.substr(0, text.find(':')) + " needs one value" + usageHint());
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what() + usageHint());
    }
    checkLeftovers();
    Command* command = selectedCommand();
    if (command == nullptr) {
        const std::string group = selectedName();
        throw UsageError((group.empty() ? "no command given" : group + " needs an action") +
                         usageHint());
    }
    return command;
}

CLI::App& CommandLine::selectedApp() const {
    CLI::App* app = app_.get();
    while (!app->get_subcommands().empty()) app = app->get_subcommands().front();
    return *app;
}

// As the command is called in commands_; empty when none is selected.
std::string CommandLine::selectedName() const {
    std::string name;
    for (CLI::App* app = &selectedApp(); app != app_.get(); app = app->get_parent()) {
        name = name.empty() ? app->get_name() : app->get_name() + " " + name;
    }
    return name;
}

Command* CommandLine::selectedCommand() const {
    const std::string name = selectedName();
    for (const auto& command : commands_) {
        if (name == command->name()) return command.get();
    }
    return nullptr;
}

// The commands, or the actions of the selected group.
std::vector<std::string> CommandLine::expectedWords() const {
    std::vector<std::string> words;
    for (const CLI::App* app : selectedApp().get_subcommands(nullptr)) {
        words.push_back(app->get_name());
    }
    return words;
}

void CommandLine::checkLeftovers() const {
    std::vector<std::string> leftovers = app_->remaining(true);
    std::erase(leftovers, "--");
    if (leftovers.empty()) return;
    const std::string& first = leftovers.front();
    if (first.size() > 1 && first.front() == '-') {
        throw UsageError(fmt::format("unknown option '{}'{}{}", first,
                                     suggestion(first, optionNames(selectedApp())), usageHint()));
    }
    if (selectedCommand() != nullptr) {
        throw UsageError(fmt::format("unexpected argument '{}'{}", first, usageHint()));
    }
    const bool isInGroup = &selectedApp() != app_.get();
    throw UsageError(fmt::format("unknown {} '{}'{}{}", isInGroup ? "action" : "command", first,
                                 suggestion(first, expectedWords()), usageHint()));
}

// What was expected: the usage of the command, or the commands.
std::string CommandLine::usageHint() const {
    const CLI::App& app = selectedApp();
    const std::string name = selectedName();
    if (name.empty()) {
        return fmt::format(" (expected one of the commands {}; see quistactl --help)",
                           joined(expectedWords()));
    }
    if (selectedCommand() == nullptr) {
        return fmt::format(" (expected one of the actions {}; see quistactl {} --help)",
                           joined(expectedWords()), name);
    }
    std::string usage = "quistactl " + name;
    for (const CLI::Option* option : app.get_options()) {
        if (!option->get_positional()) continue;
        const std::string argument = option->get_name(true);
        usage += option->get_required() ? " " + argument : " [" + argument + "]";
    }
    return fmt::format(" (expected {} [OPTIONS]; see quistactl {} --help)", usage, name);
}

bool asksForJson(const std::vector<std::string>& arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, "--json") != end;
}

}  // namespace quista::cli

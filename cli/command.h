// What a command is. Each has a file of its own in commands/.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "cli/arguments.h"
#include "cli/fields.h"
#include "cli/options.h"
#include "cli/process.h"
#include "cli/report.h"
#include "cli/watchdog.h"

namespace quista::cli {

/// What a command works with.
struct Context {
    const Options& options;
    const Process& process;
    Watchdog& watchdog;
};

class Command {
  public:
    virtual ~Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    /// One word, or a group and an action: "path disable".
    virtual const char* name() const = 0;
    /// One line for the list of commands.
    virtual const char* summary() const = 0;
    /// A command line to copy, with a word on what it shows.
    virtual const char* example() const = 0;
    /// The fields that it prints, for --help.
    virtual std::vector<FieldHelp> fields() const { return {}; }
    /// Declares arguments and options of its own; the variables behind them are its members.
    virtual void declare(Arguments&) {}
    /// Does the work. What it could not do goes into the report, or is thrown as Failure when
    /// nothing can be shown.
    virtual void execute(const Context& context, Report& report) = 0;

  protected:
    Command() = default;
};

using Commands = std::vector<std::unique_ptr<Command>>;

/// All commands of the tool, in the order of --help.
Commands makeCommands();

/// The line that a group of commands has in the list of commands.
const char* groupSummary(std::string_view group);

std::unique_ptr<Command> makeStatusCommand();
std::unique_ptr<Command> makeLunsCommand();
std::unique_ptr<Command> makeLunCommand();
std::unique_ptr<Command> makePathsCommand();
std::unique_ptr<Command> makeDisksCommand();
std::unique_ptr<Command> makeAdaptersCommand();
std::unique_ptr<Command> makeTopologyCommand();
std::unique_ptr<Command> makeRepairCommand();
std::unique_ptr<Command> makeSimulateNewCommand();
std::unique_ptr<Command> makeErrorsCommand();

// Commands of a group, in the order of its --help.
void addPathCommands(Commands& commands);
void addPolicyCommands(Commands& commands);
void addReservationCommands(Commands& commands);
void addSettingCommands(Commands& commands);

}  // namespace quista::cli

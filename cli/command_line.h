// Takes the command line apart.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/options.h"

namespace quista::cli {

class CommandLine {
  public:
    CommandLine();
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// Throws UsageError.
    /// @return the command to execute; null when only text was asked for
    Command* parse(std::vector<std::string> arguments);

    const Options& options() const { return options_; }
    /// Help or version, when that was asked for.
    const std::string& text() const { return text_; }

  private:
    void declareCommand(Command& command);
    CLI::App& groupOf(const std::string& name);
    CLI::App& selectedApp() const;
    std::string selectedName() const;
    Command* selectedCommand() const;
    std::vector<std::string> expectedWords() const;
    void checkLeftovers() const;
    std::string usageHint() const;

    Options options_;
    std::string text_;
    Commands commands_;
    std::unique_ptr<CLI::App> app_;
    std::map<std::string, CLI::App*> groups_;
};

/// Whether a command line asks for JSON, also when it cannot be parsed.
bool asksForJson(const std::vector<std::string>& arguments);

}  // namespace quista::cli

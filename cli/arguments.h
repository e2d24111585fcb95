// The arguments of one command, apart from the library that parses them.
#pragma once

#include <functional>
#include <string>

namespace CLI {
class App;
}

namespace quista::cli {

/// Says what is wrong with a value that a user gave; empty when nothing is.
using Check = std::function<std::string(const std::string& text)>;

std::string checkNotEmpty(const std::string& text);

/// Declares arguments. The variables are filled when the command line is parsed, and stay as they
/// are where the user gives no value.
class Arguments {
  public:
    explicit Arguments(CLI::App& app) : app_(app) {}

    /// A value that stands at its place, such as SERIAL.
    void required(const char* name, std::string& value, const char* help,
                  Check check = checkNotEmpty);
    void optional(const char* name, std::string& value, const char* help,
                  Check check = checkNotEmpty);
    /// A value behind its name, such as --from SAMPLE.
    void option(const char* name, const char* placeholder, std::string& value, const char* help,
                Check check = checkNotEmpty);
    void flag(const char* name, bool& value, const char* help);

  private:
    CLI::App& app_;
};

}  // namespace quista::cli

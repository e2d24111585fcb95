// Runs the tool's commands: in the test's own process, or as the program that users start.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace quista::test {

struct ToolRun {
    int exitCode = -1;
    std::string out;
    std::string err;

    /// The document on standard output; a failure of the test when it is not exactly one.
    nlohmann::json json() const;
};

struct ToolSettings {
    std::optional<std::size_t> columns;  ///< as on a terminal of this width
    bool takesColor = false;
    bool isOutputBroken = false;
};

/// Runs in the test's process.
ToolRun runTool(const std::vector<std::string>& arguments, const ToolSettings& settings = {});

/// The folder of quista.dll and the programs.
std::wstring productFolder();

/// Starts the quistactl.exe of a folder in the current one, both outputs going to files.
ToolRun runProgramFile(const std::wstring& arguments,
                       const std::wstring& programFolder = productFolder());

/// An environment variable of the process for the life of the object.
class EnvironmentVariable {
  public:
    EnvironmentVariable(const wchar_t* name, const std::wstring& value);
    ~EnvironmentVariable();
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

  private:
    const wchar_t* name_;
    std::wstring previous_;
};

}  // namespace quista::test

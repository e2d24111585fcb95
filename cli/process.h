// What a run takes from the process that it happens in. Tests replace it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "cli/output.h"

namespace quista::cli {

struct Streams {
    Output& out;
    Output& err;
};

struct Process {
    /// Folder that the simulator's DLL is loaded from.
    std::wstring folder;
    /// Ends the process at once, whatever its other threads are doing.
    std::function<void(int exitCode)> end;
    /// Puts a question to the user; no answer where nobody sits at a console. May be empty.
    std::function<std::optional<bool>(const std::string& question)> ask{};
};

/// The process as it is: the folder of its program, and the system's way to end it.
Process thisProcess();

}  // namespace quista::cli

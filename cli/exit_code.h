// How the tool ends. The manual page docs/quistactl.md lists the same codes.
#pragma once

namespace quista::cli {

/// Exit status of quistactl. Numbers are part of the interface: new ones are added, none changes.
enum class ExitCode : int {
    kDone = 0,
    kFailed = 1,    ///< the work failed, or a listing is not complete
    kUsage = 2,     ///< wrong arguments, or a simulated host that cannot be loaded
    kNotFound = 3,  ///< no such LUN, path or error code
    kRefused = 4,   ///< refused for safety
    kTimedOut = 5,  ///< a call did not return within --timeout
};

}  // namespace quista::cli

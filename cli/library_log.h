// Reads the library's own log, which names the step that a call failed in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/report.h"

namespace quista::cli {

/// Remembers where the log ends, so that what a call adds to it can be read afterwards.
class LogMark {
  public:
    LogMark();

    /// The first failed step that was logged since; none when the call has logged no failure.
    std::optional<FailedStep> failedStep() const;

  private:
    struct File {
        std::wstring path;
        std::uint64_t size = 0;
    };

    // Where the library may log to: each brand's LogDir, and the current folder.
    std::vector<File> files_;
};

/// The first failed step in lines of the log, given in UTF-8. Ends of enumerations and the notes of
/// an opened session are no failures.
std::optional<FailedStep> failedStepIn(std::string_view lines);

}  // namespace quista::cli

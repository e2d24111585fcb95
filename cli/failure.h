// The tool's own exception: why a command cannot go on.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "cli/exit_code.h"
#include "cli/report.h"
#include "quista/status.h"

namespace quista::cli {

/// Ends a command. `what()` says what failed and on which object; the library's text for `status`
/// is added where the failure is shown.
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode exitCode, unsigned long status, const std::string& what, std::string hint = {})
        : std::runtime_error(what), exitCode_(exitCode), status_(status), hint_(std::move(hint)) {}

    ExitCode exitCode() const { return exitCode_; }
    /// Status code of the library, DSM_SUCCESS when the failure is the tool's own.
    unsigned long status() const { return status_; }
    /// What the user can do; may be empty.
    const std::string& hint() const { return hint_; }
    /// The step that the library's log names, where it names one.
    const std::optional<FailedStep>& step() const { return step_; }
    void setStep(std::optional<FailedStep> step) { step_ = std::move(step); }

  private:
    ExitCode exitCode_;
    unsigned long status_;
    std::string hint_;
    std::optional<FailedStep> step_;
};

/// Wrong arguments: one line that says what was wrong and what was expected.
class UsageError : public Failure {
  public:
    explicit UsageError(const std::string& what, std::string hint = {})
        : Failure(ExitCode::kUsage, DSM_SUCCESS, what, std::move(hint)) {}
};

}  // namespace quista::cli

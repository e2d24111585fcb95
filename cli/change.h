// A change of the host: announced, confirmed, made and recorded in one way by every command.
#pragma once

#include <string>
#include <utility>

#include "cli/command.h"
#include "cli/library_log.h"
#include "cli/session.h"

namespace quista::cli {

struct ChangeOptions {
    bool isDryRun = false;
    bool isConfirmed = false;  ///< do not ask
};

/// Declares --dry-run, and for a change that can cut off storage --yes.
void addChangeOptions(Arguments& arguments, ChangeOptions& options, bool isRisky);

class Change {
  public:
    /// @param what completes "will ...": "disable the path 0x00000102 of the LUN A"
    Change(Session& session, const Context& context, Report& report, std::string what)
        : session_(session), context_(context), report_(report), what_(std::move(what)) {}

    /// Whether the change is to be made. Asks about it where a user sits at a console, and throws
    /// Failure when the answer is no.
    bool isWanted(const ChangeOptions& options, bool isRisky);

    /// Calls the library. Throws Failure with the failed step of the library's log when it returns
    /// another status than DSM_SUCCESS.
    /// @param check what the user can check then
    template <class Body>
    void make(const char* function, const char* check, Body&& body) {
        const LogMark mark;
        const unsigned long status = session_.call(function, std::forward<Body>(body));
        if (status != DSM_SUCCESS) fail(status, mark, check);
        record(true);
        session_.keepChanges(report_);
    }

    /// The library reports success, but what is read back differs.
    void reportNoEffect(const std::string& found, const char* check);

  private:
    [[noreturn]] void fail(unsigned long status, const LogMark& mark, const char* check) const;
    void record(bool isMade);

    Session& session_;
    const Context& context_;
    Report& report_;
    std::string what_;
};

}  // namespace quista::cli

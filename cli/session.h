// An open session of the library: everything that a caller owes it, for as long as it lives.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "cli/chatter_guard.h"
#include "cli/command.h"
#include "cli/simulated_adapters.h"
#include "cli/simulated_host.h"
#include "cli/simulated_registry.h"
#include "cli/work_folder.h"

namespace quista::cli {

/// COM on this thread and the process's security, as WMI's clients need them.
class ComApartment {
  public:
    /// Throws Failure with the library's status for COM that cannot be set up.
    ComApartment();
    ~ComApartment();
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

  private:
    bool isOwn_ = false;
};

class Session {
  public:
    /// Throws Failure when the library cannot be used at all.
    explicit Session(const Context& context);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// What DSMInitialize returned. With another status than DSM_SUCCESS the session may still
    /// answer in part.
    unsigned long status() const { return status_; }

    bool isSimulated() const { return host_.has_value(); }
    /// What a user calls the host: the name of the computer, or of the sample or file.
    std::string hostName() const;

    /// Writes a simulated host that was changed back to its file; changes to a sample are not kept,
    /// and the report says so. Throws Failure.
    void keepChanges(Report& report);

    /// Provides the adapter libraries of a simulated host; those of the machine are there as they
    /// are. Throws Failure.
    void provideAdapters();

    /// Calls the library under the watchdog; `name` is the function's.
    template <class Body>
    auto call(const char* name, Body&& body) {
        return watchdog_.guard(name, std::forward<Body>(body));
    }

  private:
    // In the order of opening: the host's file is relative to the user's folder, which the work
    // folder replaces.
    Watchdog& watchdog_;
    ComApartment com_;
    std::wstring programFolder_;
    std::optional<SimulatedHost> host_;
    std::optional<SimulatedRegistry> registry_;
    std::optional<SimulatedAdapters> adapters_;
    WorkFolder workFolder_;
    ChatterGuard chatter_;
    unsigned long status_;
};

}  // namespace quista::cli

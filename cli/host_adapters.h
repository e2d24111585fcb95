// The host's adapters: which of them carries a path, and the portals of the iSCSI initiators.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/model.h"
#include "cli/report.h"
#include "cli/session.h"

namespace quista::cli {

/// Looks up the adapter of every path. Of those that nobody knows the report says why, with this
/// severity; an error makes it one of a failure.
void findAdapters(Session& session, std::vector<Lun>& luns, Severity severity, Report& report);

struct Portal {
    std::optional<std::string> address;  ///< none when the portal cannot be read
    std::optional<std::uint64_t> tcpPort;
};

/// An iSCSI initiator, under the name that lookups give it (class MSiSCSI_HBAInformation).
struct Initiator {
    std::string name;
    std::vector<Portal> portals;
};

/// The iSCSI initiators of the host. The report says what could not be read: an error when there
/// are paths that need them.
std::vector<Initiator> readInitiators(Session& session, const std::vector<Lun>& luns,
                                      Report& report);

}  // namespace quista::cli

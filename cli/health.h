// Judges LUNs by their paths, and sums up what is wrong with a host.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/model.h"
#include "cli/report.h"

namespace quista::cli {

enum class Health {
    kOk,
    kDegraded,    ///< some paths are unavailable
    kLastPath,    ///< one path is left: its loss takes the LUN down
    kDown,        ///< no path is available
    kUnreadable,  ///< the driver's data is not complete enough to tell
};

Health healthOf(const Lun& lun);
/// "ok", "degraded", "last path", "down", "unreadable"
std::string_view healthName(Health health);
Tone healthTone(Health health);

/// Counts over all LUNs of a listing.
struct HealthSummary {
    std::size_t luns = 0;
    std::size_t ok = 0;
    std::size_t degraded = 0;
    std::size_t lastPath = 0;
    std::size_t down = 0;
    std::size_t unreadable = 0;
    std::size_t paths = 0;
    std::size_t pathsAvailable = 0;
};

HealthSummary summarize(std::span<const Lun> luns);
/// One line: how many LUNs there are, and which are not ok.
std::string summaryLine(std::span<const Lun> luns);

}  // namespace quista::cli

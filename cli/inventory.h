// Lists the LUNs of the host.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/model.h"
#include "cli/report.h"
#include "cli/session.h"

namespace quista::cli {

/// Every LUN that the driver publishes, in its order, as far as it can be read. Throws Failure when
/// nothing can be listed.
std::vector<Lun> readLuns(Session& session, Report& report);

/// Tells what of the LUNs could not be read: the report becomes one of a failure, since what it
/// lists is not complete.
void reportGaps(const std::vector<Lun>& luns, Report& report);

/// The LUNs with this serial number, which more than one may bear, and their gaps. Without any the
/// report says so.
std::vector<Lun> selectLuns(const std::vector<Lun>& luns, const std::string& serial,
                            Report& report);

/// Every LUN, or where a serial number is given those that bear it; and their gaps.
std::vector<Lun> readWantedLuns(Session& session, const std::string& serial, Report& report);

/// The path with this identifier; the LUNs must outlive it.
std::optional<PathOfLun> findPath(const std::vector<Lun>& luns, std::uint32_t id);

/// The same; without such a path the report says so.
std::optional<PathOfLun> selectPath(const std::vector<Lun>& luns, std::uint32_t id, Report& report);

}  // namespace quista::cli

// How the LUNs are reached: the ports of the host's adapters, the target ports behind them, and the
// paths between the two.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/model.h"

namespace quista::cli {

/// A port of a storage system, seen from one port of the host.
struct TargetPort {
    std::optional<std::string> name;     ///< port or network interface of the storage system
    std::optional<std::string> address;  ///< WWN, or address and TCP port
    std::optional<std::string> storageSystem;
    std::vector<PathOfLun> paths;
};

/// A port of an adapter of the host; for iSCSI an initiator's address.
struct AdapterPort {
    std::optional<HostAdapter> adapter;  ///< none where nobody knows it
    std::string protocol;                ///< "FC", "iSCSI"
    std::uint8_t scsiPort = 0;           ///< first number of the SCSI addresses behind it
    std::vector<TargetPort> targets;

    std::size_t pathsTotal() const;
    std::size_t pathsAvailable() const;
    /// LUNs that are reached through it.
    std::size_t luns() const;
};

/// The ports that carry the paths of these LUNs, in the order of the paths. The LUNs must outlive
/// them.
std::vector<AdapterPort> adapterPortsOf(const std::vector<Lun>& luns);

}  // namespace quista::cli

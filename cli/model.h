// LUNs and paths as the tool handles them: plain records, texts in UTF-8, every field bounded.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/format.h"
#include "quista/status.h"

struct _KORVADSM_DISKINFO;
struct _KORVADSM_PATHINFO;

namespace quista::cli {

struct FcTarget {
    Wwn nodeName{};
    Wwn portName{};
};

struct IscsiTarget {
    std::string address;  ///< IPv4 or IPv6
    bool isIpv6 = false;
    std::uint32_t tcpPort = 0;
    std::uint32_t portalGroup = 0;
    std::optional<std::string> nodeName;
};

/// Adapter of the host.
struct HostAdapter {
    std::string name;
    /// WWN of the Fibre Channel port, or IP address of the iSCSI initiator.
    std::optional<std::string> address;
};

struct Path {
    std::uint32_t id = 0;      ///< the identifier that path operations take
    std::uint32_t pathId = 0;  ///< MPIO's own identifier
    ScsiAddress address;
    std::uint8_t state = 0;
    std::uint8_t protocol = 0;
    bool isProxy = false;
    bool isPrimary = false;
    std::uint32_t weight = 0;
    std::uint32_t aluaSupport = 0;
    std::uint32_t targetPortGroupState = 0;
    std::optional<FcTarget> fc;
    std::optional<IscsiTarget> iscsi;
    std::optional<std::string> targetAdapter;  ///< port or interface of the storage system
    /// The host's adapter that carries it; none until looked up, or where nobody knows it.
    std::optional<HostAdapter> adapter;

    /// Where on the storage system it ends: the port's WWN, or the portal's address and TCP port.
    std::optional<std::string> targetPort() const;
    /// True when the path can carry I/O.
    bool isAvailable() const { return state == 1 || state == 2; }
};

struct Lun {
    /// None when the driver did not give it.
    std::optional<std::string> serialNumber;
    std::string serialText;  ///< what stands for the serial number in texts
    std::uint64_t size = 0;
    std::uint8_t policy = 0;
    std::optional<std::string> storageSystem;
    std::optional<std::string> storageVersion;
    std::uint32_t storageVersionNumber = 0;
    std::optional<std::string> lunPath;
    std::optional<std::string> instanceName;
    std::uint32_t state = 0;
    std::uint8_t cfMode = 0;
    std::uint8_t clusterType = 0;
    std::array<std::uint8_t, 8> reservationKey{};
    std::uint32_t pathsReported = 0;  ///< number of paths that the driver counts
    std::vector<Path> paths;          ///< those that it describes
    /// What the library said about the record; the record is partly filled unless DSM_SUCCESS.
    unsigned long status = DSM_SUCCESS;

    std::size_t pathsAvailable() const;
    /// True when every path that the driver counts is also described.
    bool hasAllPaths() const;
};

/// A path together with the LUN it leads to.
struct PathOfLun {
    const Lun* lun;
    const Path* path;
};

Lun lunFrom(const _KORVADSM_DISKINFO& record, unsigned long status);
Path pathFrom(const _KORVADSM_PATHINFO& record);

}  // namespace quista::cli

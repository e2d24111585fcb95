// What a generated host looks like, before it is written down: LUNs, paths and their identities.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quista::simulator {

enum class Transport { fibreChannel, iscsiIpv4, iscsiIpv6 };

/// Numbers of the driver's PathState that a generated host uses.
inline constexpr unsigned kPathActive = 1;
inline constexpr unsigned kPathPassive = 2;

/// Every LUN supports the policies from 1 up to this number.
inline constexpr unsigned kPolicies = 6;

struct PathPlan {
    std::uint32_t dsmId = 0;   ///< unique on the host
    std::uint32_t pathId = 0;  ///< of initiator and target port: shared by the LUNs behind them
    std::uint8_t port = 0;
    std::uint8_t bus = 0;
    std::uint8_t target = 0;
    std::uint8_t lun = 0;
    Transport transport = Transport::fibreChannel;
    unsigned state = kPathActive;
    bool isProxy = false;
    bool isPrimary = false;
    unsigned weight = 0;
    std::array<std::uint8_t, 8> targetPortName{};  ///< Fibre Channel only
    std::uint32_t ipv4Address = 0;                 ///< lowest byte first
    std::array<std::uint8_t, 16> ipv6Address{};    ///< network order
};

struct LunPlan {
    unsigned index = 0;
    std::wstring serialNumber;
    std::wstring instanceName;  ///< the name of the LUN's disk in the vendor's and MPIO's classes
    std::wstring pnpDeviceId;   ///< the name of the same disk in Windows' classes
    std::wstring lunPath;
    std::uint64_t size = 0;  ///< in bytes
    unsigned policy = 0;
    std::vector<PathPlan> paths;
};

LunPlan planLun(unsigned index, unsigned pathsPerLun);

}  // namespace quista::simulator

// A host's LUNs and disks as plain records, gathered from the instances of the different classes.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "simulator/repository/repository.h"

namespace quista::test {

/// A SCSI address; without its LUN it names the nexus of initiator and target port.
struct ScsiAddress {
    std::uint64_t port = 0;
    std::uint64_t bus = 0;
    std::uint64_t target = 0;
    std::uint64_t lun = 0;

    auto operator<=>(const ScsiAddress&) const = default;
};
/// As a failed expectation shows it: port:bus:target:LUN.
void PrintTo(const ScsiAddress& address, std::ostream* out);

/// One path as KORVADSM_PATHINFO describes it.
struct VendorPath {
    std::int64_t dsmId = 0;
    std::uint64_t pathId = 0;
    ScsiAddress address;
    std::uint64_t state = 0;
    std::uint64_t protocol = 0;
    bool isProxy = false;
    bool isPrimary = false;
    std::uint64_t weight = 0;
    std::uint64_t groupState = 0;
    std::vector<std::uint8_t> nodeName;
    std::vector<std::uint8_t> portName;
    std::uint64_t tcpPort = 0;
    std::uint64_t ipv4Address = 0;
    std::vector<std::uint8_t> ipv6Address;
    std::wstring fcAdapter;
    std::wstring iscsiNode;
    std::wstring iscsiAdapter;

    bool isFibreChannel() const { return protocol == 1; }
    bool isIscsi() const { return protocol == 2; }
    bool hasIpv6() const { return isIscsi() && ipv4Address == 0; }
    bool isAvailable() const { return state == 1 || state == 2; }
};

/// One LUN as KORVADSM_LUNINFO describes it.
struct VendorLun {
    std::wstring instanceName;
    std::optional<std::wstring> serialNumber;
    std::uint64_t size = 0;
    std::uint64_t state = 0;
    std::uint64_t policy = 0;
    std::vector<std::uint8_t> reservationKey;
    std::vector<VendorPath> paths;

    std::size_t availablePaths() const;
};

/// One path of a disk as MPIO describes it.
struct MpioPath {
    std::uint64_t pathId = 0;
    ScsiAddress address;
    std::uint64_t state = 0;
    std::vector<std::uint8_t> controller;
};

/// One disk as MPIO describes it: its entry in the list, its descriptor and its policies.
struct MpioDisk {
    struct PolicyPath {
        std::uint64_t pathId = 0;
        std::uint64_t weight = 0;
        bool isPrimary = false;
    };

    std::wstring instanceName;
    std::optional<std::wstring> serialNumber;
    std::wstring dsmName;
    std::wstring name;
    std::wstring deviceName;
    std::uint64_t numberPaths = 0;
    std::vector<MpioPath> paths;
    std::uint64_t policy = 0;
    std::vector<PolicyPath> policyPaths;
    std::vector<std::uint64_t> supportedPolicies;
};

/// One disk as Windows describes it: drive and medium.
struct WindowsDisk {
    std::wstring deviceId;
    std::uint64_t index = 0;
    std::wstring pnpDeviceId;
    std::uint64_t size = 0;
    std::optional<std::wstring> serialNumber;
};

std::vector<VendorLun> vendorLuns(const simulator::Repository& host);
/// In the order of MPIO's list, which descriptors and policies must have too.
std::vector<MpioDisk> mpioDisks(const simulator::Repository& host);
std::vector<WindowsDisk> windowsDisks(const simulator::Repository& host);

}  // namespace quista::test

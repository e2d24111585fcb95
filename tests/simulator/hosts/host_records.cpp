#include "tests/simulator/hosts/host_records.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>

#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {

using simulator::CimInstance;
using simulator::CimInstancePtr;
using simulator::Repository;

namespace {

ScsiAddress readAddress(const CimInstance& owner) {
    const CimInstancePtr address = objectOf(owner, L"ScsiAddress");
    return {.port = numberOf(*address, L"PortNumber"),
            .bus = numberOf(*address, L"ScsiPathId"),
            .target = numberOf(*address, L"TargetId"),
            .lun = numberOf(*address, L"Lun")};
}

VendorPath readVendorPath(const CimInstance& path) {
    return {.dsmId = signedNumberOf(path, L"DsmId"),
            .pathId = numberOf(path, L"PathId"),
            .address = readAddress(path),
            .state = numberOf(path, L"PathState"),
            .protocol = numberOf(path, L"Protocol"),
            .isProxy = truthOf(path, L"Proxy"),
            .isPrimary = truthOf(path, L"PrimaryPath"),
            .weight = numberOf(path, L"PathWeight"),
            .groupState = numberOf(path, L"TargetPortGroupState"),
            .nodeName = bytesOf(path, L"TargetFcpNodename"),
            .portName = bytesOf(path, L"TargetFcpPortname"),
            .tcpPort = numberOf(path, L"TargetTCPPortNumber"),
            .ipv4Address = numberOf(path, L"TargetIPv4Address"),
            .ipv6Address = bytesOf(path, L"TargetIPv6Address"),
            .fcAdapter = textOf(path, L"TargetAdapterName"),
            .iscsiNode = textOf(path, L"TargetiSCSINodeName"),
            .iscsiAdapter = textOf(path, L"TargetiSCSIAdapterName")};
}

MpioPath readMpioPath(const CimInstance& pdo) {
    return {.pathId = numberOf(pdo, L"PathIdentifier"),
            .address = readAddress(pdo),
            .state = numberOf(pdo, L"DeviceState"),
            .controller = bytesOf(pdo, L"Identifier")};
}

/// The only instance of a class, or the first after a failure.
CimInstancePtr onlyInstance(const Repository& host, std::wstring_view className) {
    const std::vector<CimInstancePtr> instances = host.instances(kWmi, className);
    EXPECT_EQ(instances.size(), 1u) << shown(className);
    return instances.empty() ? nullptr : instances.front();
}

void readPolicies(const Repository& host, std::size_t index, MpioDisk& disk) {
    const auto policies = host.instances(kWmi, L"DSM_QueryLBPolicy");
    const auto supported = host.instances(kWmi, L"DSM_QuerySupportedLBPolicies");
    ASSERT_LT(index, policies.size());
    ASSERT_LT(index, supported.size());
    EXPECT_EQ(textOf(*policies[index], L"InstanceName"), disk.instanceName);
    EXPECT_EQ(textOf(*supported[index], L"InstanceName"), disk.instanceName);

    const CimInstancePtr policy = objectOf(*policies[index], L"LoadBalancePolicy");
    disk.policy = numberOf(*policy, L"LoadBalancePolicy");
    for (const CimInstancePtr& path : objectsOf(*policy, L"DSM_Paths")) {
        disk.policyPaths.push_back({.pathId = numberOf(*path, L"DsmPathId"),
                                    .weight = numberOf(*path, L"PathWeight"),
                                    .isPrimary = numberOf(*path, L"PrimaryPath") == 1});
    }
    for (const CimInstancePtr& other : objectsOf(*supported[index], L"Supported_LB_Policies")) {
        disk.supportedPolicies.push_back(numberOf(*other, L"LoadBalancePolicy"));
    }
}

}  // namespace

void PrintTo(const ScsiAddress& address, std::ostream* out) {
    *out << address.port << ':' << address.bus << ':' << address.target << ':' << address.lun;
}

std::size_t VendorLun::availablePaths() const {
    return static_cast<std::size_t>(std::count_if(
        paths.begin(), paths.end(), [](const VendorPath& path) { return path.isAvailable(); }));
}

std::vector<VendorLun> vendorLuns(const Repository& host) {
    std::vector<VendorLun> luns;
    for (const CimInstancePtr& instance : host.instances(kWmi, L"KORVADSM_LUNINFO")) {
        VendorLun lun{.instanceName = textOf(*instance, L"InstanceName"),
                      .serialNumber = textOrNull(*instance, L"SerialNumber"),
                      .size = numberOf(*instance, L"LunSize"),
                      .state = numberOf(*instance, L"LunState"),
                      .policy = numberOf(*instance, L"KorvaDSMLoadBalancePolicy"),
                      .reservationKey = bytesOf(*instance, L"ReservationKey"),
                      .paths = {}};
        for (const CimInstancePtr& path : objectsOf(*instance, L"Paths")) {
            lun.paths.push_back(readVendorPath(*path));
        }
        luns.push_back(std::move(lun));
    }
    return luns;
}

std::vector<MpioDisk> mpioDisks(const Repository& host) {
    std::vector<MpioDisk> disks;
    const CimInstancePtr list = onlyInstance(host, L"MPIO_DISK_INFO");
    if (list == nullptr) return disks;
    const std::vector<CimInstancePtr> drives = objectsOf(*list, L"DriveInfo");
    const auto descriptors = host.instances(kWmi, L"MPIO_GET_DESCRIPTOR");
    EXPECT_EQ(descriptors.size(), drives.size());

    for (std::size_t i = 0; i < std::min(drives.size(), descriptors.size()); ++i) {
        MpioDisk disk{.instanceName = textOf(*descriptors[i], L"InstanceName"),
                      .serialNumber = textOrNull(*drives[i], L"SerialNumber"),
                      .dsmName = textOf(*drives[i], L"DsmName"),
                      .name = textOf(*drives[i], L"Name"),
                      .deviceName = textOf(*descriptors[i], L"DeviceName"),
                      .numberPaths = numberOf(*drives[i], L"NumberPaths"),
                      .paths = {},
                      .policy = 0,
                      .policyPaths = {},
                      .supportedPolicies = {}};
        for (const CimInstancePtr& pdo : objectsOf(*descriptors[i], L"PdoInformation")) {
            disk.paths.push_back(readMpioPath(*pdo));
        }
        readPolicies(host, i, disk);
        disks.push_back(std::move(disk));
    }
    return disks;
}

std::vector<WindowsDisk> windowsDisks(const Repository& host) {
    std::vector<WindowsDisk> disks;
    const auto media = host.instances(kCimv2, L"Win32_PhysicalMedia");
    for (const CimInstancePtr& drive : host.instances(kCimv2, L"Win32_DiskDrive")) {
        WindowsDisk disk{.deviceId = textOf(*drive, L"DeviceID"),
                         .index = numberOf(*drive, L"Index"),
                         .pnpDeviceId = textOf(*drive, L"PNPDeviceID"),
                         .size = numberOf(*drive, L"Size"),
                         .serialNumber = {}};
        const auto medium =
            std::find_if(media.begin(), media.end(), [&](const CimInstancePtr& candidate) {
                return textOf(*candidate, L"Tag") == disk.deviceId;
            });
        if (medium == media.end()) {
            ADD_FAILURE() << "no medium in " << shown(disk.deviceId);
        } else {
            disk.serialNumber = textOrNull(**medium, L"SerialNumber");
        }
        disks.push_back(std::move(disk));
    }
    EXPECT_EQ(media.size(), disks.size());
    return disks;
}

}  // namespace quista::test

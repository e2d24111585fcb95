#include "simulator/generator/host_plan.h"

#include <iterator>

#include "simulator/generator/instance_text.h"

namespace quista::simulator {
namespace {

/// LUNs that one target port serves: as many as the 8-bit LUN of a SCSI address tells apart.
constexpr unsigned kLunsPerTarget = 256;
constexpr unsigned kFirstPort = 2;
constexpr unsigned kPorts = 250;
constexpr unsigned kTargetsPerBus = 256;
constexpr unsigned kFailOverOnly = 1;
constexpr unsigned kWeightedPaths = 5;

std::uint8_t byteOf(std::uint32_t number, unsigned byte) {
    return static_cast<std::uint8_t>(number >> (8 * byte));
}

/// What Windows puts into the identifiers of a disk: the serial number's characters as hexadecimal
/// pairs.
std::wstring hexOfText(const std::wstring& text) {
    std::wstring digits;
    for (const wchar_t character : text) {
        digits += hexDigits(static_cast<std::uint32_t>(character), 2);
    }
    return digits;
}

std::wstring upperCase(std::wstring digits) {
    for (wchar_t& digit : digits) {
        if (digit >= L'a' && digit <= L'f') digit = static_cast<wchar_t>(digit - L'a' + L'A');
    }
    return digits;
}

Transport transportOf(unsigned path) {
    constexpr Transport kTurns[] = {Transport::fibreChannel, Transport::fibreChannel,
                                    Transport::iscsiIpv4, Transport::iscsiIpv6};
    return kTurns[path % std::size(kTurns)];
}

/// Address and identity follow from the number of the nexus, the pair of initiator and target port.
void placeOnNexus(PathPlan& path, std::uint32_t nexus) {
    path.pathId = 0x77000000u | nexus;
    path.port = static_cast<std::uint8_t>(kFirstPort + nexus % kPorts);
    path.target = static_cast<std::uint8_t>(nexus / kPorts % kTargetsPerBus);
    path.bus = static_cast<std::uint8_t>(nexus / kPorts / kTargetsPerBus);
    switch (path.transport) {
        case Transport::fibreChannel:
            path.targetPortName = {0x50,
                                   0x24,
                                   0xb5,
                                   0x61,
                                   byteOf(nexus, 3),
                                   byteOf(nexus, 2),
                                   byteOf(nexus, 1),
                                   byteOf(nexus, 0)};
            break;
        case Transport::iscsiIpv4:  // 10.x.y.z
            path.ipv4Address = 10u | static_cast<std::uint32_t>(byteOf(nexus, 2)) << 8 |
                               static_cast<std::uint32_t>(byteOf(nexus, 1)) << 16 |
                               static_cast<std::uint32_t>(byteOf(nexus, 0)) << 24;
            break;
        case Transport::iscsiIpv6:  // fd4b:5600::x:y
            path.ipv6Address = {0xfd, 0x4b, 0x56};
            for (unsigned byte = 0; byte < 4; ++byte) {
                path.ipv6Address[15 - byte] = byteOf(nexus, byte);
            }
            break;
    }
}

PathPlan planPath(const LunPlan& lun, unsigned number, unsigned pathsPerLun) {
    const bool throughOwner = number < (pathsPerLun + 1) / 2;
    const bool preferred = lun.policy == kFailOverOnly ? number == 0 : throughOwner;

    PathPlan path;
    path.dsmId = 1 + lun.index * pathsPerLun + number;
    path.lun = static_cast<std::uint8_t>(lun.index % kLunsPerTarget);
    path.transport = transportOf(number);
    path.state = preferred ? kPathActive : kPathPassive;
    path.isProxy = !throughOwner;
    path.isPrimary = preferred;
    path.weight = lun.policy == kWeightedPaths ? 10 * number : 0;
    placeOnNexus(path, lun.index / kLunsPerTarget * pathsPerLun + number);
    return path;
}

}  // namespace

LunPlan planLun(unsigned index, unsigned pathsPerLun) {
    LunPlan lun;
    lun.index = index;
    lun.serialNumber = L"kvG" + hexDigits(index, 9);
    const std::wstring identifier = hexOfText(lun.serialNumber);
    lun.instanceName = L"MPIO\\Disk&Ven_KORVA&Prod_LUN&Rev_0.2\\1&7f6ac24&0&" + identifier + L"_0";
    lun.pnpDeviceId =
        L"MPIO\\DISK&VEN_KORVA&PROD_LUN&REV_0.2\\1&7F6AC24&0&" + upperCase(identifier);
    lun.lunPath = L"/vol/load/lun" + std::to_wstring(index);
    lun.size = std::uint64_t{10 + index % 100} << 30;
    lun.policy = 1 + index % kPolicies;
    lun.paths.reserve(pathsPerLun);
    for (unsigned number = 0; number < pathsPerLun; ++number) {
        lun.paths.push_back(planPath(lun, number, pathsPerLun));
    }
    return lun;
}

}  // namespace quista::simulator

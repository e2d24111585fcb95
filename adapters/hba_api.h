// The SNIA Fibre Channel HBA API: the part of the published interface that the library uses.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quista::hba {

using Status = std::uint32_t;
using Handle = std::uint32_t;

inline constexpr Status kOk = 0;
inline constexpr Status kError = 1;
inline constexpr Status kMoreData = 7;
inline constexpr Status kStaleData = 8;

struct Wwn {
    std::uint8_t bytes[8];
};

struct AdapterAttributes {
    char Manufacturer[64];
    char SerialNumber[64];
    char Model[256];
    char ModelDescription[256];
    Wwn NodeWWN;
    char NodeSymbolicName[256];
    char HardwareVersion[256];
    char DriverVersion[256];
    char OptionROMVersion[256];
    char FirmwareVersion[256];
    std::uint32_t VendorSpecificID;
    std::uint32_t NumberOfPorts;
    char DriverName[256];
};

struct PortAttributes {
    Wwn NodeWWN;
    Wwn PortWWN;
    std::uint32_t PortFcId;
    std::uint32_t PortType;
    std::uint32_t PortState;
    std::uint32_t PortSupportedClassofService;
    std::uint8_t PortSupportedFc4Types[32];
    std::uint8_t PortActiveFc4Types[32];
    char PortSymbolicName[256];
    char OSDeviceName[256];
    std::uint32_t PortSupportedSpeed;
    std::uint32_t PortSpeed;
    std::uint32_t PortMaxFrameSize;
    Wwn FabricName;
    std::uint32_t NumberofDiscoveredPorts;
};

struct ScsiId {
    char OSDeviceName[256];
    std::uint32_t ScsiBusNumber;
    std::uint32_t ScsiTargetNumber;
    std::uint32_t ScsiOSLun;
};

struct FcpId {
    std::uint32_t FcId;
    Wwn NodeWWN;
    Wwn PortWWN;
    std::uint64_t FcpLun;
};

struct FcpScsiEntry {
    ScsiId ScsiIdentifier;
    FcpId FcpIdentifier;
};

struct FcpTargetMapping {
    std::uint32_t NumberOfEntries;
    FcpScsiEntry entry[1];
};

static_assert(sizeof(Wwn) == 8);
static_assert(sizeof(AdapterAttributes) == 2192);
static_assert(offsetof(AdapterAttributes, NodeWWN) == 640);
static_assert(offsetof(AdapterAttributes, VendorSpecificID) == 1928);
static_assert(offsetof(AdapterAttributes, NumberOfPorts) == 1932);
static_assert(offsetof(AdapterAttributes, DriverName) == 1936);
static_assert(sizeof(PortAttributes) == 632);
static_assert(offsetof(PortAttributes, PortWWN) == 8);
static_assert(offsetof(PortAttributes, PortSymbolicName) == 96);
static_assert(offsetof(PortAttributes, OSDeviceName) == 352);
static_assert(offsetof(PortAttributes, FabricName) == 620);
static_assert(offsetof(PortAttributes, NumberofDiscoveredPorts) == 628);
static_assert(sizeof(ScsiId) == 268);
static_assert(offsetof(ScsiId, ScsiBusNumber) == 256);
static_assert(sizeof(FcpId) == 32);
static_assert(offsetof(FcpId, FcpLun) == 24);
static_assert(sizeof(FcpScsiEntry) == 304);
static_assert(offsetof(FcpScsiEntry, FcpIdentifier) == 272);
static_assert(sizeof(FcpTargetMapping) == 312);
static_assert(offsetof(FcpTargetMapping, entry) == 8);

}  // namespace quista::hba

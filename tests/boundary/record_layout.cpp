// Sizes, alignments and offsets of the records that cross the boundary: callers were compiled with
// them. Checked when this file compiles, in the build's own mode and in Microsoft mode.
#include <cstddef>

#include "quista/records.h"

namespace {

template <typename Record, std::size_t kSize, std::size_t kAlignment>
constexpr bool laidOut() {
    return sizeof(Record) == kSize && alignof(Record) == kAlignment;
}

template <typename Element, std::size_t kLength>
constexpr std::size_t lengthOf(Element (*)[kLength]) {
    return kLength;
}

// The declared length of an array field.
#define QUISTA_LENGTH(record, field) lengthOf(static_cast<decltype(record::field)*>(nullptr))

// Integers and texts of the platform.
static_assert(sizeof(unsigned long) == 4 && sizeof(wchar_t) == 2 && sizeof(void*) == 8);

static_assert(laidOut<_MPIO_CONTROLLER_INFO, 176, 4>());
static_assert(offsetof(_MPIO_CONTROLLER_INFO, IdentifierType) == 0);
static_assert(offsetof(_MPIO_CONTROLLER_INFO, AssociatedDsm) == 48);
static_assert(QUISTA_LENGTH(_MPIO_CONTROLLER_INFO, AssociatedDsm) == 64);

static_assert(laidOut<_MPIO_CONTROLLER_CONFIGURATION, 11444, 4>());
static_assert(offsetof(_MPIO_CONTROLLER_CONFIGURATION, NumberControllers) == 0);
static_assert(offsetof(_MPIO_CONTROLLER_CONFIGURATION, ControllerInfo) == 4);
static_assert(QUISTA_LENGTH(_MPIO_CONTROLLER_CONFIGURATION, ControllerInfo) == 65);

static_assert(laidOut<_DSM_DRIVEINFO, 388, 4>());
static_assert(offsetof(_DSM_DRIVEINFO, SerialNumber) == 0);
static_assert(offsetof(_DSM_DRIVEINFO, DsmName) == 256);
static_assert(offsetof(_DSM_DRIVEINFO, NumberPaths) == 384);
static_assert(QUISTA_LENGTH(_DSM_DRIVEINFO, SerialNumber) == 128);
static_assert(QUISTA_LENGTH(_DSM_DRIVEINFO, DsmName) == 64);

static_assert(laidOut<_DSM_DISKS, 396, 4>());
static_assert(offsetof(_DSM_DISKS, NumberDrives) == 0);
static_assert(offsetof(_DSM_DISKS, DriveInfo) == 8);
static_assert(QUISTA_LENGTH(_DSM_DISKS, DriveInfo) == 1);

static_assert(laidOut<_MPIO_SCSI_ADDRESS, 4, 1>());
static_assert(offsetof(_MPIO_SCSI_ADDRESS, PortNumber) == 0);
static_assert(offsetof(_MPIO_SCSI_ADDRESS, ScsiPathId) == 1);
static_assert(offsetof(_MPIO_SCSI_ADDRESS, TargetId) == 2);
static_assert(offsetof(_MPIO_SCSI_ADDRESS, Lun) == 3);

static_assert(laidOut<_PDO_INFORMATION, 64, 8>());
static_assert(offsetof(_PDO_INFORMATION, ScsiAddress) == 0);
static_assert(offsetof(_PDO_INFORMATION, PathIdentifier) == 8);

static_assert(laidOut<_MPIO_GET_DESCRIPTOR, 200, 8>());
static_assert(offsetof(_MPIO_GET_DESCRIPTOR, NumberPdos) == 0);
static_assert(offsetof(_MPIO_GET_DESCRIPTOR, DeviceName) == 4);
static_assert(offsetof(_MPIO_GET_DESCRIPTOR, PdoInformation) == 136);
static_assert(QUISTA_LENGTH(_MPIO_GET_DESCRIPTOR, DeviceName) == 64);
static_assert(QUISTA_LENGTH(_MPIO_GET_DESCRIPTOR, PdoInformation) == 1);

static_assert(alignof(_MPIO_DESCRIPTOR_LIST) == 8);
static_assert(offsetof(_MPIO_DESCRIPTOR_LIST, NumberDescriptors) == 0);
static_assert(offsetof(_MPIO_DESCRIPTOR_LIST, Descriptor) == 8);
static_assert(sizeof(_MPIO_DESCRIPTOR_LIST::Descriptor[0]) == 8);

// The byte-sized addresses begin at a multiple of 4; the record's own alignment is the count's.
static_assert(laidOut<PDO_SCSI_ADDRESS, 8, 4>());
static_assert(offsetof(PDO_SCSI_ADDRESS, NumberPdos) == 0);
static_assert(offsetof(PDO_SCSI_ADDRESS, ScsiAddress) == 4);
static_assert(QUISTA_LENGTH(PDO_SCSI_ADDRESS, ScsiAddress) == 1);

static_assert(laidOut<_DSM_PATHINFO, 80, 4>());
static_assert(offsetof(_DSM_PATHINFO, PathState) == 4);
static_assert(offsetof(_DSM_PATHINFO, Protocol) == 24);
static_assert(offsetof(_DSM_PATHINFO, PrimaryPath) == 32);
static_assert(offsetof(_DSM_PATHINFO, TargetIPv4Address) == 40);
static_assert(offsetof(_DSM_PATHINFO, TargetFcpPortname) == 60);
static_assert(offsetof(_DSM_PATHINFO, TargetFcpNodename) == 68);
static_assert(offsetof(_DSM_PATHINFO, Proxy) == 76);
static_assert(QUISTA_LENGTH(_DSM_PATHINFO, TargetFcpPortname) == 8);
static_assert(QUISTA_LENGTH(_DSM_PATHINFO, TargetFcpNodename) == 8);

static_assert(laidOut<_DSM_DISKINFO, 480, 4>());
static_assert(offsetof(_DSM_DISKINFO, LoadBalancePolicy) == 396);
static_assert(offsetof(_DSM_DISKINFO, PathInfo) == 400);
static_assert(QUISTA_LENGTH(_DSM_DISKINFO, PathInfo) == 1);

static_assert(laidOut<_DRIVER_VERSION_ENTRY, 144, 4>());
static_assert(laidOut<_DRIVER_VERSION, 576, 4>());
static_assert(offsetof(_DRIVER_VERSION, Program) == 0);
static_assert(offsetof(_DRIVER_VERSION, KorvaDsm) == 144);
static_assert(offsetof(_DRIVER_VERSION, Mpio) == 288);
static_assert(offsetof(_DRIVER_VERSION, MicrosoftDsm) == 432);

static_assert(laidOut<_KORVADSM_PATHINFO, 1708, 4>());
static_assert(offsetof(_KORVADSM_PATHINFO, DsmId) == 0);
static_assert(offsetof(_KORVADSM_PATHINFO, PathId) == 4);
static_assert(offsetof(_KORVADSM_PATHINFO, PortNumber) == 52);
static_assert(offsetof(_KORVADSM_PATHINFO, ScsiPathId) == 53);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetId) == 54);
static_assert(offsetof(_KORVADSM_PATHINFO, Lun) == 55);
static_assert(offsetof(_KORVADSM_PATHINFO, PathState) == 56);
static_assert(offsetof(_KORVADSM_PATHINFO, Protocol) == 57);
static_assert(offsetof(_KORVADSM_PATHINFO, Proxy) == 58);
static_assert(offsetof(_KORVADSM_PATHINFO, PrimaryPath) == 59);
static_assert(offsetof(_KORVADSM_PATHINFO, PathWeight) == 60);
static_assert(offsetof(_KORVADSM_PATHINFO, ALUASupport) == 64);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetPortGroupState) == 68);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetFcpNodename) == 80);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetFcpPortname) == 88);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetPortalGroupId) == 96);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetTCPPortNumber) == 100);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetIPv4Address) == 104);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetIPv6Address) == 108);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetAdapterName) == 124);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetiSCSINodeName) == 638);
static_assert(offsetof(_KORVADSM_PATHINFO, TargetiSCSIAdapterName) == 1152);
static_assert(QUISTA_LENGTH(_KORVADSM_PATHINFO, TargetFcpNodename) == 8);
static_assert(QUISTA_LENGTH(_KORVADSM_PATHINFO, TargetFcpPortname) == 8);
static_assert(QUISTA_LENGTH(_KORVADSM_PATHINFO, TargetIPv6Address) == 16);
static_assert(QUISTA_LENGTH(_KORVADSM_PATHINFO, TargetAdapterName) == 257);
static_assert(QUISTA_LENGTH(_KORVADSM_PATHINFO, TargetiSCSINodeName) == 257);
static_assert(QUISTA_LENGTH(_KORVADSM_PATHINFO, TargetiSCSIAdapterName) == 257);

static_assert(laidOut<_KORVADSM_DISKINFO, 3360, 8>());
static_assert(offsetof(_KORVADSM_DISKINFO, FilerName) == 0);
static_assert(offsetof(_KORVADSM_DISKINFO, KORVAVersionString) == 260);
static_assert(offsetof(_KORVADSM_DISKINFO, LunPath) == 390);
static_assert(offsetof(_KORVADSM_DISKINFO, SerialNumber) == 904);
static_assert(offsetof(_KORVADSM_DISKINFO, LunSize) == 1040);
static_assert(offsetof(_KORVADSM_DISKINFO, LunState) == 1048);
static_assert(offsetof(_KORVADSM_DISKINFO, CFMode) == 1052);
static_assert(offsetof(_KORVADSM_DISKINFO, LoadBalancePolicy) == 1053);
static_assert(offsetof(_KORVADSM_DISKINFO, KORVAVersion) == 1056);
static_assert(offsetof(_KORVADSM_DISKINFO, ReservationKey) == 1060);
static_assert(offsetof(_KORVADSM_DISKINFO, clusterType) == 1069);
static_assert(offsetof(_KORVADSM_DISKINFO, InstanceName) == 1136);
static_assert(offsetof(_KORVADSM_DISKINFO, NumberPaths) == 1648);
static_assert(offsetof(_KORVADSM_DISKINFO, Paths) == 1652);
static_assert(QUISTA_LENGTH(_KORVADSM_DISKINFO, FilerName) == 130);
static_assert(QUISTA_LENGTH(_KORVADSM_DISKINFO, KORVAVersionString) == 65);
static_assert(QUISTA_LENGTH(_KORVADSM_DISKINFO, LunPath) == 257);
static_assert(QUISTA_LENGTH(_KORVADSM_DISKINFO, SerialNumber) == 65);
static_assert(QUISTA_LENGTH(_KORVADSM_DISKINFO, ReservationKey) == 8);
static_assert(QUISTA_LENGTH(_KORVADSM_DISKINFO, InstanceName) == 256);
static_assert(QUISTA_LENGTH(_KORVADSM_DISKINFO, Paths) == 1);

// A LUN entry is the leading part of the disk record, field for field.
static_assert(laidOut<_KORVADSM_LUN, 1136, 8>());
static_assert(offsetof(_KORVADSM_LUN, FilerName) == 0);
static_assert(offsetof(_KORVADSM_LUN, KORVAVersionString) == 260);
static_assert(offsetof(_KORVADSM_LUN, LunPath) == 390);
static_assert(offsetof(_KORVADSM_LUN, SerialNumber) == 904);
static_assert(offsetof(_KORVADSM_LUN, LunSize) == 1040);
static_assert(offsetof(_KORVADSM_LUN, LunState) == 1048);
static_assert(offsetof(_KORVADSM_LUN, CFMode) == 1052);
static_assert(offsetof(_KORVADSM_LUN, LoadBalancePolicy) == 1053);
static_assert(offsetof(_KORVADSM_LUN, KORVAVersion) == 1056);
static_assert(offsetof(_KORVADSM_LUN, ReservationKey) == 1060);
static_assert(offsetof(_KORVADSM_LUN, clusterType) == 1069);

static_assert(offsetof(_KORVADSM_DISKS, NumberDisks) == 0);
static_assert(offsetof(_KORVADSM_DISKS, Disks) == 8);
static_assert(QUISTA_LENGTH(_KORVADSM_DISKS, Disks) == 1);

static_assert(laidOut<_WMIDISKDRIVEDATA, 16, 8>());
static_assert(offsetof(_WMIDISKDRIVEDATA, DiskNumber) == 0);
static_assert(offsetof(_WMIDISKDRIVEDATA, Size) == 8);

static_assert(laidOut<_DSM_LOAD_BALANCE_TYPE, 4, 4>());

static_assert(laidOut<_LBP_DESCRIPTOR_LIST, 64, 8>());
static_assert(offsetof(_LBP_DESCRIPTOR_LIST, Count) == 0);
static_assert(offsetof(_LBP_DESCRIPTOR_LIST, Descriptor) == 8);
static_assert(QUISTA_LENGTH(_LBP_DESCRIPTOR_LIST, Descriptor) == 7);

static_assert(laidOut<_QUISTA_PROPERTY_SET, 20, 4>());

static_assert(laidOut<_KORVADSM_ISCSI_HBAINFO, 2072, 8>());
static_assert(offsetof(_KORVADSM_ISCSI_HBAINFO, PortalCount) == 8);
static_assert(offsetof(_KORVADSM_ISCSI_HBAINFO, Description) == 12);
static_assert(offsetof(_KORVADSM_ISCSI_HBAINFO, Portals) == 2064);

static_assert(laidOut<_KORVADSM_ISCSI_PORTAL, 2056, 4>());
static_assert(offsetof(_KORVADSM_ISCSI_PORTAL, Address) == 0);
static_assert(offsetof(_KORVADSM_ISCSI_PORTAL, Port) == 2048);
static_assert(offsetof(_KORVADSM_ISCSI_PORTAL, Valid) == 2052);

#undef QUISTA_LENGTH

}  // namespace

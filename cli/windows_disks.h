// The Windows disks that LUNs appear as.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/model.h"
#include "cli/report.h"
#include "cli/session.h"

namespace quista::cli {

/// A disk by its serial number (class Win32_PhysicalMedia).
struct PhysicalMedium {
    std::string serialNumber;
    long diskNumber = -1;
};

/// A disk by its Plug and Play device identifier (class Win32_DiskDrive).
struct DiskDrive {
    std::string deviceId;
    long diskNumber = -1;
    std::uint64_t size = 0;
};

struct WindowsDisks {
    std::vector<PhysicalMedium> media;
    std::vector<DiskDrive> drives;
};

/// A LUN with what Windows knows of its disk. The LUN must outlive it.
struct DiskOfLun {
    const Lun* lun = nullptr;
    std::optional<std::uint64_t> number;
    std::optional<std::string> device;  ///< "\\.\PHYSICALDRIVE3"
    std::optional<std::uint64_t> size;
    std::optional<std::string> deviceId;
};

/// The disks of the host; the report says which of the two classes could not be read.
WindowsDisks readWindowsDisks(Session& session, Report& report);

/// Finds the disk of each LUN: by its serial number, else by its device identifier, from which MPIO
/// makes the name of the LUN's instance.
std::vector<DiskOfLun> joinDisks(const std::vector<Lun>& luns, const WindowsDisks& disks);

}  // namespace quista::cli

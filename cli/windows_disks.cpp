#include "cli/windows_disks.h"

#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <string_view>

#include "cli/hints.h"
#include "cli/text.h"
#include "quista/luns.h"

namespace quista::cli {
namespace {

// A map that the library fills; its values are the caller's to free.
class DiskMap {
  public:
    DiskMap() = default;
    ~DiskMap() {
        for (const auto& [key, disk] : map_) CoTaskMemFree(disk);
    }
    DiskMap(const DiskMap&) = delete;
    DiskMap& operator=(const DiskMap&) = delete;

    std::map<std::wstring, _WMIDISKDRIVEDATA*>& map() { return map_; }

  private:
    std::map<std::wstring, _WMIDISKDRIVEDATA*> map_;
};

void checkRead(unsigned long status, const char* className, Report& report) {
    if (status == DSM_SUCCESS) return;
    report.add(Severity::kError, fmt::format("cannot read the class {} completely", className),
               status, hintFor(status));
    report.fail(ExitCode::kFailed, status);
}

// Drivers pad serial numbers with blanks.
std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

const PhysicalMedium* mediumOf(const Lun& lun, const WindowsDisks& disks) {
    if (!lun.serialNumber) return nullptr;
    const auto found =
        std::find_if(disks.media.begin(), disks.media.end(), [&](const PhysicalMedium& medium) {
            return medium.diskNumber >= 0 && trimmed(medium.serialNumber) == *lun.serialNumber;
        });
    return found == disks.media.end() ? nullptr : &*found;
}

// "MPIO\Disk&Ven_X\1&2&3_0" is an instance of the device "MPIO\DISK&VEN_X\1&2&3".
std::string deviceIdOf(const Lun& lun) {
    if (!lun.instanceName) return {};
    const std::size_t end = lun.instanceName->rfind('_');
    return end == std::string::npos ? *lun.instanceName : lun.instanceName->substr(0, end);
}

template <class Predicate>
const DiskDrive* findDrive(const WindowsDisks& disks, Predicate matches) {
    const auto found = std::find_if(disks.drives.begin(), disks.drives.end(), matches);
    return found == disks.drives.end() ? nullptr : &*found;
}

const DiskDrive* driveOf(const Lun& lun, const PhysicalMedium* medium, const WindowsDisks& disks) {
    if (medium != nullptr) {
        return findDrive(
            disks, [&](const DiskDrive& drive) { return drive.diskNumber == medium->diskNumber; });
    }
    const std::string deviceId = deviceIdOf(lun);
    if (deviceId.empty()) return nullptr;
    return findDrive(
        disks, [&](const DiskDrive& drive) { return equalIgnoringCase(drive.deviceId, deviceId); });
}

DiskOfLun diskOf(const Lun& lun, const WindowsDisks& disks) {
    DiskOfLun disk{.lun = &lun, .number = {}, .device = {}, .size = {}, .deviceId = {}};
    const PhysicalMedium* medium = mediumOf(lun, disks);
    const DiskDrive* drive = driveOf(lun, medium, disks);
    if (drive != nullptr) {
        disk.size = drive->size;
        disk.deviceId = drive->deviceId;
    }
    long number = -1;
    if (medium != nullptr) {
        number = medium->diskNumber;
    } else if (drive != nullptr) {
        number = drive->diskNumber;
    }
    if (number >= 0) {
        disk.number = static_cast<std::uint64_t>(number);
        disk.device = fmt::format(R"(\\.\PHYSICALDRIVE{})", number);
    }
    return disk;
}

}  // namespace

WindowsDisks readWindowsDisks(Session& session, Report& report) {
    DiskMap media;
    DiskMap drives;
    long count = 0;
    checkRead(session.call("KORVADSMGetAllWin32_PhysicalMedia",
                           [&] { return KORVADSMGetAllWin32_PhysicalMedia(&media.map(), count); }),
              "Win32_PhysicalMedia", report);
    checkRead(session.call("KORVADSMGetAllWin32_DiskDrive",
                           [&] { return KORVADSMGetAllWin32_DiskDrive(&drives.map(), count); }),
              "Win32_DiskDrive", report);
    WindowsDisks disks;
    for (const auto& [serial, medium] : media.map()) {
        disks.media.push_back({toUtf8(serial), medium->DiskNumber});
    }
    for (const auto& [deviceId, drive] : drives.map()) {
        disks.drives.push_back(
            {toUtf8(deviceId), drive->DiskNumber, static_cast<std::uint64_t>(drive->Size)});
    }
    return disks;
}

std::vector<DiskOfLun> joinDisks(const std::vector<Lun>& luns, const WindowsDisks& disks) {
    std::vector<DiskOfLun> joined;
    for (const Lun& lun : luns) joined.push_back(diskOf(lun, disks));
    return joined;
}

}  // namespace quista::cli

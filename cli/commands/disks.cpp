#include "cli/command.h"
#include "cli/format.h"
#include "cli/inventory.h"
#include "cli/lun_fields.h"
#include "cli/windows_disks.h"

namespace quista::cli {
namespace {

Value size(const DiskOfLun& disk) {
    return disk.size ? shownAs(formatSize(*disk.size), *disk.size) : nothing();
}

constexpr Field<DiskOfLun> kDiskFields[] = {
    {"SERIAL", "serialNumber", "serial number of the LUN",
     [](const DiskOfLun& disk) { return serialOf(*disk.lun); }},
    {"DISK", "diskNumber", "number that Windows gives to the disk",
     [](const DiskOfLun& disk) { return optionalNumber(disk.number); }, kEverywhere, Align::kRight},
    {"DEVICE", "device", "device by which programs open the disk",
     [](const DiskOfLun& disk) { return optionalText(disk.device); }},
    {"SIZE", "size", "size of the Windows disk; bytes in JSON", size, kEverywhere, Align::kRight},
    {"LUN PATH", "lunPath", "path of the LUN on the storage system",
     [](const DiskOfLun& disk) { return optionalText(disk.lun->lunPath); }},
    {"", "deviceId", "Plug and Play identifier of the disk",
     [](const DiskOfLun& disk) { return optionalText(disk.deviceId); }, kJson},
};

Fields<DiskOfLun> diskFields() {
    return kDiskFields;
}

class DisksCommand final : public Command {
  public:
    const char* name() const override { return "disks"; }
    const char* summary() const override { return "List the Windows disks of the LUNs"; }
    const char* example() const override {
        return "quistactl disks                each LUN with its disk number, device and size";
    }
    std::vector<FieldHelp> fields() const override { return fieldHelp(diskFields()); }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        const std::vector<Lun> luns = readLuns(session, report);
        reportGaps(luns, report);
        const WindowsDisks disks = readWindowsDisks(session, report);
        report.sections.push_back(sectionOf("disks", kTable, diskFields(), joinDisks(luns, disks)));
        if (luns.empty()) report.add(Severity::kInfo, "no LUNs found");
    }
};

}  // namespace

std::unique_ptr<Command> makeDisksCommand() {
    return std::make_unique<DisksCommand>();
}

}  // namespace quista::cli

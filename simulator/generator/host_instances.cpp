#include "simulator/generator/host_instances.h"

#include <string_view>

#include "simulator/generator/instance_text.h"
#include "simulator/mof/mof_text.h"

namespace quista::simulator {
namespace {

constexpr wchar_t kDsmName[] = L"Data KORVA DSM";
constexpr wchar_t kMpioInstance[] = L"ROOT\\MPIO\\0000_0";

std::wstring controllers() {
    return arrayOf({instanceOf(L"MPIO_CONTROLLER_INFO",
                               {{L"IdentifierType", numberText(1)},
                                {L"IdentifierLength", numberText(kStorageNode.size())},
                                {L"Identifier", bytesText(kStorageIdentifier)},
                                {L"ControllerState", numberText(1)},
                                {L"Pad", numberText(0)},
                                {L"AssociatedDsm", mofString(kDsmName)}})});
}

std::wstring drives(const std::vector<LunPlan>& luns) {
    std::vector<std::wstring> elements;
    elements.reserve(luns.size());
    for (const LunPlan& lun : luns) {
        elements.push_back(instanceOf(L"MPIO_DRIVE_INFO",
                                      {{L"NumberPaths", numberText(lun.paths.size())},
                                       {L"Name", mofString(L"MPIO Disk" + numberText(lun.index))},
                                       {L"SerialNumber", mofString(lun.serialNumber)},
                                       {L"DsmName", mofString(kDsmName)}}));
    }
    return arrayOf(elements);
}

}  // namespace

std::wstring mpioHostInstances(const std::vector<LunPlan>& luns) {
    return namedInstance(
               L"MPIO_CONTROLLER_CONFIGURATION", kMpioInstance,
               {{L"NumberControllers", numberText(1)}, {L"ControllerInfo", controllers()}}) +
           namedInstance(
               L"MPIO_DISK_INFO", kMpioInstance,
               {{L"NumberDrives", numberText(luns.size())}, {L"DriveInfo", drives(luns)}});
}

}  // namespace quista::simulator

#include "simulator/generator/host_generator.h"

#include <string_view>
#include <vector>

#include "host_texts.h"
#include "simulator/generator/disk_instances.h"
#include "simulator/generator/host_instances.h"
#include "simulator/generator/host_plan.h"

namespace quista::simulator {
namespace {

constexpr std::wstring_view kWmiNamespace = L"#pragma namespace(\"\\\\\\\\.\\\\root\\\\wmi\")\n\n";
constexpr std::wstring_view kCimv2Namespace =
    L"#pragma namespace(\"\\\\\\\\.\\\\root\\\\cimv2\")\n\n";

/// What every host has: the classes and the multipath software.
std::wstring commonText() {
    std::wstring text;
    for (const std::string_view file : kHostTexts) {
        text.append(file.begin(), file.end());  // plain ASCII
        text += L'\n';
    }
    return text;
}

}  // namespace

std::wstring generateHost(unsigned luns, unsigned pathsPerLun) {
    std::vector<LunPlan> plans;
    plans.reserve(luns);
    for (unsigned index = 0; index < luns; ++index) {
        plans.push_back(planLun(index, pathsPerLun));
    }

    std::wstring text = commonText();
    text += kWmiNamespace;
    for (const LunPlan& lun : plans) {
        text += vendorInstance(lun);
        text += mpioInstances(lun);
    }
    text += mpioHostInstances(plans);
    text += kCimv2Namespace;
    for (const LunPlan& lun : plans) {
        text += windowsInstances(lun);
    }
    return text;
}

}  // namespace quista::simulator

// The instances that exist once per LUN, as MOF text.
#pragma once

#include <string>

#include "simulator/generator/host_plan.h"

namespace quista::simulator {

/// KORVADSM_LUNINFO with its paths.
std::wstring vendorInstance(const LunPlan& lun);
/// MPIO_GET_DESCRIPTOR and the load-balance classes.
std::wstring mpioInstances(const LunPlan& lun);
/// Win32_DiskDrive and Win32_PhysicalMedia; these belong into root\cimv2.
std::wstring windowsInstances(const LunPlan& lun);

}  // namespace quista::simulator

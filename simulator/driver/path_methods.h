// The path operations of KORVADSM_LUNINFO.
#pragma once

#include "simulator/driver/driver_methods.h"
#include "simulator/driver/driver_status.h"

namespace quista::simulator {

/// Carries out SetActive, SetPassive, SetEnabled, SetDisabled, SetWeight or UpdateRTPG on the path
/// of the LUN that the request names. A request without the parameter DsmID names none and changes
/// nothing.
DriverStatus carryOutPathMethod(const MethodCall& call);

}  // namespace quista::simulator

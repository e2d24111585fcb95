// Results of methods that a host's own file prescribes.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "simulator/driver/driver_methods.h"

namespace quista::simulator {

/// One prescribed out-parameter.
struct MethodResult {
    std::wstring outParameter;      ///< empty: the method returns no object
    std::optional<CimValue> value;  ///< nothing when the parameter's type cannot take what is given
};

/// What the instances of Simulator_MethodResult in root\simulator prescribe for the call. The class
/// is declared and described in hosts/classes/simulator.mof.
std::vector<MethodResult> hostResultsFor(const MethodCall& call);

/// Whether the results hold a refusal by the driver: a ReturnCode or Status of informational,
/// warning or error severity.
bool holdRefusal(const std::vector<MethodResult>& results);

}  // namespace quista::simulator

// The operation of DSM_LB_Operations.
#pragma once

#include "simulator/driver/driver_methods.h"
#include "simulator/driver/driver_status.h"

namespace quista::simulator {

/// DsmSetLoadBalancePolicy: gives the disk the policy, takes over weights and primary paths that
/// come with it, and lets the paths carry I/O as the policy wants.
DriverStatus setLoadBalancePolicy(const MethodCall& call);

}  // namespace quista::simulator

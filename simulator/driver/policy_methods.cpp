#include "simulator/driver/policy_methods.h"

#include <optional>
#include <string>
#include <vector>

#include "simulator/driver/instance_values.h"
#include "simulator/driver/multipath_disk.h"
#include "simulator/driver/path_states.h"

namespace quista::simulator {
namespace {

std::optional<LoadBalancePolicy> policyOf(const CimInstance& requested) {
    const std::uint64_t number = numberOf(requested, L"LoadBalancePolicy").value_or(0);
    const auto policy = static_cast<LoadBalancePolicy>(number);
    if (policy < LoadBalancePolicy::failOverOnly || policy > LoadBalancePolicy::vendorSpecific) {
        return std::nullopt;
    }
    return policy;
}

/// Takes over what comes with the policy for one path; false for a path that the disk does not
/// have.
bool takeOver(MultipathDisk& disk, const CimInstance& requested) {
    const std::optional<std::uint64_t> pathId = numberOf(requested, L"DsmPathId");
    DiskPath* path = pathId ? disk.findByPathId(*pathId) : nullptr;
    if (path == nullptr) return !disk.hasPolicyPaths();
    if (const auto weight = numberOf(requested, L"PathWeight")) path->setWeight(*weight);
    if (const auto primary = numberOf(requested, L"PrimaryPath")) path->setPrimary(*primary != 0);
    return true;
}

}  // namespace

DriverStatus setLoadBalancePolicy(const MethodCall& call) {
    if (call.instance == nullptr || call.inParameters == nullptr) return DriverStatus::success;
    const std::optional<CimInstance> requested = objectOf(*call.inParameters, L"LoadBalancePolicy");
    const std::optional<LoadBalancePolicy> policy = requested ? policyOf(*requested) : std::nullopt;
    if (!policy) return DriverStatus::invalidParameter;

    MultipathDisk disk(call.repository, call.nameSpace,
                       textOf(*call.instance, L"InstanceName").value_or(L""));
    if (!disk.supports(*policy)) return DriverStatus::notSupportedByStorage;
    for (const CimInstance& path : objectsOf(*requested, L"DSM_Paths")) {
        if (!takeOver(disk, path)) return DriverStatus::invalidParameter;
    }
    disk.setPolicy(*policy);
    arrangePaths(disk);
    disk.store();
    return DriverStatus::success;
}

}  // namespace quista::simulator

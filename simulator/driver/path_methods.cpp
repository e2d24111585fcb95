#include "simulator/driver/path_methods.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/driver/instance_values.h"
#include "simulator/driver/multipath_disk.h"
#include "simulator/driver/path_states.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

struct PathRequest {
    MultipathDisk& disk;
    DiskPath& path;
    const CimInstance& parameters;
};

/// Why a path cannot be made active or passive; `success` when it can.
DriverStatus refuseChange(const PathRequest& request) {
    if (request.disk.policy() == LoadBalancePolicy::weightedPaths) {
        return DriverStatus::notUnderThisPolicy;
    }
    switch (request.path.state()) {
        case PathState::failed:
            return DriverStatus::pathFailed;
        case PathState::disabled:
            return DriverStatus::pathDisabled;
        default:
            return DriverStatus::success;
    }
}

DriverStatus setActive(const PathRequest& request) {
    const DriverStatus refusal = refuseChange(request);
    if (refusal != DriverStatus::success) return refusal;
    request.path.setState(PathState::active);
    if (request.disk.policy() == LoadBalancePolicy::failOverOnly) {
        failOverTo(request.disk, request.path);
    }
    return DriverStatus::success;
}

DriverStatus setPassive(const PathRequest& request) {
    const DriverStatus refusal = refuseChange(request);
    if (refusal != DriverStatus::success) return refusal;
    const bool wasActive = request.path.state() == PathState::active;
    request.path.setState(PathState::passive);
    if (wasActive && request.disk.policy() == LoadBalancePolicy::failOverOnly) {
        failOverFrom(request.disk, request.path);
    }
    return DriverStatus::success;
}

DriverStatus setEnabled(const PathRequest& request) {
    if (request.path.state() == PathState::failed) return DriverStatus::pathFailed;
    if (request.path.state() == PathState::disabled) joinIn(request.disk, request.path);
    return DriverStatus::success;
}

DriverStatus setDisabled(const PathRequest& request) {
    if (request.path.state() == PathState::failed) return DriverStatus::pathFailed;
    request.path.setState(PathState::disabled);
    standIn(request.disk, request.path);
    return DriverStatus::success;
}

DriverStatus setWeight(const PathRequest& request) {
    const std::optional<std::uint64_t> weight = numberOf(request.parameters, L"Weight");
    if (!weight) return DriverStatus::invalidParameter;
    const LoadBalancePolicy policy = request.disk.policy();
    if (policy != LoadBalancePolicy::weightedPaths && policy != LoadBalancePolicy::unknown) {
        return DriverStatus::notUnderThisPolicy;
    }
    request.path.setWeight(*weight);
    if (policy == LoadBalancePolicy::weightedPaths) arrangePaths(request.disk);
    return DriverStatus::success;
}

/// The simulated storage system's target port groups are always as the host shows them.
DriverStatus updateTargetPortGroups(const PathRequest&) {
    return DriverStatus::success;
}

struct Operation {
    std::wstring_view method;
    DriverStatus (*carryOut)(const PathRequest& request);
};

constexpr std::array kOperations{
    Operation{L"SetActive", setActive},   Operation{L"SetPassive", setPassive},
    Operation{L"SetEnabled", setEnabled}, Operation{L"SetDisabled", setDisabled},
    Operation{L"SetWeight", setWeight},   Operation{L"UpdateRTPG", updateTargetPortGroups},
};

DriverStatus carryOut(const Operation& operation, const MethodCall& call) {
    const CimInstance& parameters = *call.inParameters;
    const std::optional<std::uint64_t> dsmId = numberOf(parameters, L"DsmID");
    if (!dsmId) return DriverStatus::invalidParameter;
    MultipathDisk disk(call.repository, call.nameSpace,
                       textOf(*call.instance, L"InstanceName").value_or(L""));
    DiskPath* path = disk.findByDsmId(static_cast<std::uint32_t>(*dsmId));
    if (path == nullptr) return DriverStatus::noSuchPath;
    const DriverStatus status = operation.carryOut({disk, *path, parameters});
    if (status == DriverStatus::success) disk.store();
    return status;
}

}  // namespace

DriverStatus carryOutPathMethod(const MethodCall& call) {
    const bool namesPath =
        call.inParameters != nullptr && call.inParameters->find(L"DsmID") != nullptr;
    if (call.instance == nullptr || !namesPath) return DriverStatus::success;
    for (const Operation& operation : kOperations) {
        if (equalNoCase(operation.method, call.method.name)) return carryOut(operation, call);
    }
    return DriverStatus::success;
}

}  // namespace quista::simulator

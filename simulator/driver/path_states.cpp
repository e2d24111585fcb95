#include "simulator/driver/path_states.h"

#include <algorithm>

namespace quista::simulator {
namespace {

bool isActive(const DiskPath& path) {
    return path.state() == PathState::active;
}

bool anyActive(const MultipathDisk& disk) {
    return std::ranges::any_of(disk.paths(), isActive);
}

/// Makes the available paths active that `isChosen`, and the others passive.
template <class Predicate>
void activate(MultipathDisk& disk, const Predicate& isChosen) {
    for (DiskPath& path : disk.paths()) {
        if (!path.isAvailable()) continue;
        path.setState(isChosen(path) ? PathState::active : PathState::passive);
    }
}

void activateAll(MultipathDisk& disk) {
    activate(disk, [](const DiskPath&) { return true; });
}

void activateOnly(MultipathDisk& disk, const DiskPath& chosen) {
    activate(disk, [&](const DiskPath& path) { return &path == &chosen; });
}

/// The first available path; one to the owning controller before one through its partner.
DiskPath* firstAvailable(MultipathDisk& disk, const DiskPath* except = nullptr) {
    DiskPath* proxy = nullptr;
    for (DiskPath& path : disk.paths()) {
        if (!path.isAvailable() || &path == except) continue;
        if (!path.isProxy()) return &path;
        if (proxy == nullptr) proxy = &path;
    }
    return proxy;
}

/// The available path of the lowest weight, of several the first.
DiskPath* lightest(MultipathDisk& disk) {
    DiskPath* best = nullptr;
    for (DiskPath& path : disk.paths()) {
        if (!path.isAvailable()) continue;
        if (best == nullptr || path.weight() < best->weight()) best = &path;
    }
    return best;
}

void arrangeFailOver(MultipathDisk& disk) {
    const auto primary = std::ranges::find_if(disk.paths(), &DiskPath::isPrimary);
    if (primary == disk.paths().end()) {
        if (DiskPath* path = firstAvailable(disk)) failOverTo(disk, *path);
    } else if (primary->isAvailable()) {
        activateOnly(disk, *primary);
    } else if (const DiskPath* path = firstAvailable(disk)) {
        activateOnly(disk, *path);  // stands in for the primary path, which keeps its rank
    }
}

void arrangeSubset(MultipathDisk& disk) {
    activate(disk, [](const DiskPath& path) { return path.isPrimary(); });
    if (!anyActive(disk)) activateAll(disk);
}

void arrangeByWeight(MultipathDisk& disk) {
    if (const DiskPath* path = lightest(disk)) activateOnly(disk, *path);
}

}  // namespace

void failOverTo(MultipathDisk& disk, DiskPath& path) {
    path.setState(PathState::active);
    for (DiskPath& other : disk.paths()) other.setPrimary(&other == &path);
    activateOnly(disk, path);
}

void failOverFrom(MultipathDisk& disk, const DiskPath& path) {
    if (DiskPath* other = firstAvailable(disk, &path)) failOverTo(disk, *other);
}

void arrangePaths(MultipathDisk& disk) {
    switch (disk.policy()) {
        case LoadBalancePolicy::failOverOnly:
            return arrangeFailOver(disk);
        case LoadBalancePolicy::roundRobinWithSubset:
            return arrangeSubset(disk);
        case LoadBalancePolicy::weightedPaths:
            return arrangeByWeight(disk);
        default:
            return activateAll(disk);
    }
}

void joinIn(MultipathDisk& disk, DiskPath& path) {
    const bool isNeeded = !anyActive(disk);
    path.setState(PathState::passive);
    switch (disk.policy()) {
        case LoadBalancePolicy::failOverOnly:
            if (isNeeded) failOverTo(disk, path);
            break;
        case LoadBalancePolicy::roundRobinWithSubset:
            if (isNeeded || path.isPrimary()) path.setState(PathState::active);
            break;
        case LoadBalancePolicy::weightedPaths:
            arrangeByWeight(disk);
            break;
        default:
            path.setState(PathState::active);
    }
}

void standIn(MultipathDisk& disk, const DiskPath& disabled) {
    if (anyActive(disk)) return;
    switch (disk.policy()) {
        case LoadBalancePolicy::failOverOnly:
            return failOverFrom(disk, disabled);
        case LoadBalancePolicy::weightedPaths:
            return arrangeByWeight(disk);
        default:
            return activateAll(disk);
    }
}

}  // namespace quista::simulator

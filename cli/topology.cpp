#include "cli/topology.h"

#include <algorithm>
#include <set>

#include "cli/names.h"

namespace quista::cli {
namespace {

bool isSame(const std::optional<HostAdapter>& left, const std::optional<HostAdapter>& right) {
    if (!left || !right) return left.has_value() == right.has_value();
    return left->name == right->name && left->address == right->address;
}

AdapterPort& portFor(const Path& path, std::vector<AdapterPort>& ports) {
    const std::string_view protocol = protocolName(path.protocol);
    const auto known = std::find_if(ports.begin(), ports.end(), [&](const AdapterPort& port) {
        return port.scsiPort == path.address.port && port.protocol == protocol &&
               isSame(port.adapter, path.adapter);
    });
    if (known != ports.end()) return *known;
    return ports.emplace_back(
        AdapterPort{path.adapter, std::string(protocol), path.address.port, {}});
}

TargetPort& targetFor(const PathOfLun& row, std::vector<TargetPort>& targets) {
    TargetPort wanted{row.path->targetAdapter, row.path->targetPort(), row.lun->storageSystem, {}};
    const auto known = std::find_if(targets.begin(), targets.end(), [&](const TargetPort& target) {
        return target.name == wanted.name && target.address == wanted.address &&
               target.storageSystem == wanted.storageSystem;
    });
    return known != targets.end() ? *known : targets.emplace_back(std::move(wanted));
}

}  // namespace

std::size_t AdapterPort::pathsTotal() const {
    std::size_t count = 0;
    for (const TargetPort& target : targets) count += target.paths.size();
    return count;
}

std::size_t AdapterPort::pathsAvailable() const {
    std::size_t count = 0;
    for (const TargetPort& target : targets) {
        count += static_cast<std::size_t>(
            std::count_if(target.paths.begin(), target.paths.end(),
                          [](const PathOfLun& row) { return row.path->isAvailable(); }));
    }
    return count;
}

std::size_t AdapterPort::luns() const {
    std::set<const Lun*> luns;
    for (const TargetPort& target : targets) {
        for (const PathOfLun& row : target.paths) luns.insert(row.lun);
    }
    return luns.size();
}

std::vector<AdapterPort> adapterPortsOf(const std::vector<Lun>& luns) {
    std::vector<AdapterPort> ports;
    for (const Lun& lun : luns) {
        for (const Path& path : lun.paths) {
            const PathOfLun row{&lun, &path};
            targetFor(row, portFor(path, ports).targets).paths.push_back(row);
        }
    }
    return ports;
}

}  // namespace quista::cli

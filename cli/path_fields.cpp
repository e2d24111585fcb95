#include "cli/path_fields.h"

#include <fmt/format.h>
#include <iterator>

#include "cli/format.h"
#include "cli/lun_fields.h"
#include "cli/names.h"

namespace quista::cli {
namespace {

Value targetNode(const PathOfLun& row) {
    if (row.path->fc) return textValue(formatWwn(row.path->fc->nodeName));
    const auto& iscsi = row.path->iscsi;
    return iscsi && iscsi->nodeName ? textValue(*iscsi->nodeName) : nothing();
}

Value targetAddress(const PathOfLun& row) {
    return row.path->iscsi ? textValue(row.path->iscsi->address) : nothing();
}

Value targetTcpPort(const PathOfLun& row) {
    return row.path->iscsi ? numberValue(row.path->iscsi->tcpPort) : nothing();
}

Value targetPortalGroup(const PathOfLun& row) {
    return row.path->iscsi ? numberValue(row.path->iscsi->portalGroup) : nothing();
}

Value aluaSupport(const PathOfLun& row) {
    return namedValue(aluaSupportName(row.path->aluaSupport), row.path->aluaSupport);
}

Value targetPortGroupState(const PathOfLun& row) {
    const std::uint32_t state = row.path->targetPortGroupState;
    return namedValue(targetPortGroupStateName(state), state);
}

constexpr unsigned kNestedAndJson = kNested | kJson;

constexpr Field<PathOfLun> kPathFields[] = {
    {"SERIAL", "serialNumber", "serial number of the LUN",
     [](const PathOfLun& row) { return serialOf(*row.lun); }, kTable | kJson},
    {"ID", "id", "identifier of the path",
     [](const PathOfLun& row) { return textValue(formatPathId(row.path->id)); }},
    {"STATE", "state", "the driver's state: active, passive, failed or disabled",
     [](const PathOfLun& row) { return stateOf(*row.path); }},
    {"", "available", "whether the path can carry I/O",
     [](const PathOfLun& row) { return yesOrNo(row.path->isAvailable()); }, kJson},
    {"PROTOCOL", "protocol", "FC or iSCSI",
     [](const PathOfLun& row) { return textValue(std::string(protocolName(row.path->protocol))); }},
    {"ADDRESS", "scsiAddress", "SCSI address port:bus:target:lun",
     [](const PathOfLun& row) { return textValue(formatScsiAddress(row.path->address)); }},
    {"PRIMARY", "primary", "whether it is the primary path of its LUN",
     [](const PathOfLun& row) { return yesOrNo(row.path->isPrimary); }},
    {"PROXY", "proxy", "whether it leads through the partner of the LUN's owner",
     [](const PathOfLun& row) { return yesOrNo(row.path->isProxy); }},
    {"WEIGHT", "weight", "weight, which the policy Weighted Paths goes by",
     [](const PathOfLun& row) { return numberValue(row.path->weight); }, kEverywhere,
     Align::kRight},
    {"TARGET", "target", "target port: WWN, or address and TCP port",
     [](const PathOfLun& row) { return optionalText(row.path->targetPort()); }},
    {"TARGET NODE", "targetNode", "target node: WWN or iSCSI name", targetNode, kNestedAndJson},
    {"", "targetAddress", "IP address of an iSCSI target", targetAddress, kJson},
    {"", "targetTcpPort", "TCP port of an iSCSI target", targetTcpPort, kJson},
    {"PORTAL GROUP", "targetPortalGroup", "portal group of an iSCSI target", targetPortalGroup,
     kNestedAndJson, Align::kRight},
    {"ALUA", "aluaSupport", "how the target supports asymmetric access", aluaSupport,
     kNestedAndJson},
    {"TPG STATE", "targetPortGroupState", "ALUA state of the target port group",
     targetPortGroupState, kNestedAndJson},
    {"PATH ID", "pathId", "MPIO's identifier of the path",
     [](const PathOfLun& row) { return textValue(formatPathId(row.path->pathId)); },
     kNestedAndJson},
    {"TARGET ADAPTER", "targetAdapter", "port or network interface of the storage system",
     [](const PathOfLun& row) { return optionalText(row.path->targetAdapter); }},
    {"ADAPTER", "adapter", "adapter of this host that carries the path",
     [](const PathOfLun& row) {
         return row.path->adapter ? textValue(row.path->adapter->name) : nothing();
     }},
    {"ADAPTER ADDRESS", "adapterAddress",
     "WWN of the adapter's port, or the initiator's IP address",
     [](const PathOfLun& row) {
         return row.path->adapter ? optionalText(row.path->adapter->address) : nothing();
     },
     kNestedAndJson},
};

constexpr std::size_t kAdapterFields = 2;

}  // namespace

Value stateOf(const Path& path) {
    return namedValue(pathStateName(path.state), path.state,
                      path.isAvailable() ? Tone::kGood : Tone::kBad);
}

Fields<PathOfLun> pathFields() {
    return Fields<PathOfLun>(kPathFields).first(std::size(kPathFields) - kAdapterFields);
}

Fields<PathOfLun> pathAndAdapterFields() {
    return kPathFields;
}

std::vector<PathOfLun> pathsOf(const Lun& lun) {
    std::vector<PathOfLun> paths;
    for (const Path& path : lun.paths) paths.push_back({&lun, &path});
    return paths;
}

}  // namespace quista::cli

#include "cli/path_fields.h"

#include <fmt/format.h>

#include "cli/format.h"
#include "cli/names.h"

namespace quista::cli {
namespace {

Value nothing() {
    return textOrNothing(nullptr);
}

Value serialNumber(const PathOfLun& row) {
    const Lun& lun = *row.lun;
    return lun.serialNumber ? textValue(*lun.serialNumber) : shownAs(lun.serialText, nullptr);
}

Value state(const PathOfLun& row) {
    const std::uint8_t number = row.path->state;
    return namedValue(pathStateName(number), number,
                      row.path->isAvailable() ? Tone::kGood : Tone::kBad);
}

std::string portal(const IscsiTarget& target) {
    return fmt::format(fmt::runtime(target.isIpv6 ? "[{}]:{}" : "{}:{}"), target.address,
                       target.tcpPort);
}

// Where on the storage system the path ends: the port's WWN, or the portal's address.
Value target(const PathOfLun& row) {
    if (row.path->fc) return textValue(formatWwn(row.path->fc->portName));
    return row.path->iscsi ? textValue(portal(*row.path->iscsi)) : nothing();
}

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

Value targetAdapter(const PathOfLun& row) {
    return textOrNothing(row.path->targetAdapter ? &*row.path->targetAdapter : nullptr);
}

constexpr unsigned kNestedAndJson = kNested | kJson;

constexpr Field<PathOfLun> kPathFields[] = {
    {"SERIAL", "serialNumber", "serial number of the LUN", serialNumber, kTable | kJson},
    {"ID", "id", "identifier of the path",
     [](const PathOfLun& row) { return textValue(formatPathId(row.path->id)); }},
    {"STATE", "state", "the driver's state: active, passive, failed or disabled", state},
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
    {"TARGET", "target", "target port: WWN, or address and TCP port", target},
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
     targetAdapter},
};

}  // namespace

Fields<PathOfLun> pathFields() {
    return kPathFields;
}

std::vector<PathOfLun> pathsOf(const Lun& lun) {
    std::vector<PathOfLun> paths;
    for (const Path& path : lun.paths) paths.push_back({&lun, &path});
    return paths;
}

}  // namespace quista::cli

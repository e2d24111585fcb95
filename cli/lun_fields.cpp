#include "cli/lun_fields.h"

#include <fmt/format.h>

#include "cli/format.h"
#include "cli/names.h"

namespace quista::cli {
namespace {

Value paths(const Lun& lun) {
    return textValue(fmt::format("{}/{}", lun.pathsAvailable(), lun.pathsReported));
}

Value health(const Lun& lun) {
    const Health health = healthOf(lun);
    const std::string name(healthName(health));
    return shownAs(name, name, healthTone(health));
}

constexpr unsigned kDetailsAndJson = kDetails | kJson;

constexpr Field<Lun> kLunFields[] = {
    {"SERIAL", "serialNumber", "serial number; null in JSON when it cannot be read", serialOf},
    {"SIZE", "size", "size; bytes in JSON",
     [](const Lun& lun) { return shownAs(formatSize(lun.size), lun.size); }, kEverywhere,
     Align::kRight},
    {"POLICY", "policy", "load-balance policy, MPIO's number and name",
     [](const Lun& lun) { return namedValue(policyName(lun.policy), lun.policy); }},
    {"PATHS", "paths", "available paths / all paths", paths, kTable | kDetails, Align::kRight},
    {"", "pathsAvailable", "number of paths that can carry I/O",
     [](const Lun& lun) { return numberValue(lun.pathsAvailable()); }, kJson},
    {"", "pathsTotal", "number of paths that the driver counts",
     [](const Lun& lun) { return numberValue(lun.pathsReported); }, kJson},
    {"STATE", "health", "ok, degraded, last path, down or unreadable", health},
    {"STORAGE", "storageSystem", "storage system that the LUN is on",
     [](const Lun& lun) { return optionalText(lun.storageSystem); }},
    {"LUN PATH", "lunPath", "path of the LUN on the storage system",
     [](const Lun& lun) { return optionalText(lun.lunPath); }},
    {"STORAGE VERSION", "storageVersion", "software of the storage system",
     [](const Lun& lun) { return optionalText(lun.storageVersion); }, kDetailsAndJson},
    {"STORAGE VERSION NUMBER", "storageVersionNumber",
     "the same as a number: major, minor and patch, one byte each",
     [](const Lun& lun) {
         return shownAs(formatVersion(lun.storageVersionNumber),
                        std::uint64_t{lun.storageVersionNumber});
     },
     kDetailsAndJson},
    {"LUN STATE", "lunState", "the driver's state of the LUN",
     [](const Lun& lun) { return namedValue(lunStateName(lun.state), lun.state); },
     kDetailsAndJson},
    {"CF MODE", "cfMode", "how the storage system's controllers stand in for each other",
     [](const Lun& lun) { return namedValue(cfModeName(lun.cfMode), lun.cfMode); },
     kDetailsAndJson},
    {"CLUSTER TYPE", "clusterType", "kind of cluster that the storage system belongs to",
     [](const Lun& lun) { return namedValue(clusterTypeName(lun.clusterType), lun.clusterType); },
     kDetailsAndJson},
    {"RESERVATION KEY", "reservationKey", "persistent reservation key, 16 hexadecimal digits",
     [](const Lun& lun) { return textValue(formatReservationKey(lun.reservationKey)); },
     kDetailsAndJson},
    {"INSTANCE NAME", "instanceName", "name of the LUN's WMI instance",
     [](const Lun& lun) { return optionalText(lun.instanceName); }, kDetailsAndJson},
};

constexpr Field<HealthSummary> kSummaryFields[] = {
    {"", "luns", "number of LUNs", [](const HealthSummary& s) { return numberValue(s.luns); },
     kJson},
    {"", "ok", "LUNs with all paths available",
     [](const HealthSummary& s) { return numberValue(s.ok); }, kJson},
    {"", "degraded", "LUNs with some paths unavailable",
     [](const HealthSummary& s) { return numberValue(s.degraded); }, kJson},
    {"", "lastPath", "LUNs with one path left",
     [](const HealthSummary& s) { return numberValue(s.lastPath); }, kJson},
    {"", "down", "LUNs without an available path",
     [](const HealthSummary& s) { return numberValue(s.down); }, kJson},
    {"", "unreadable", "LUNs whose data is not complete",
     [](const HealthSummary& s) { return numberValue(s.unreadable); }, kJson},
    {"", "paths", "number of paths", [](const HealthSummary& s) { return numberValue(s.paths); },
     kJson},
    {"", "pathsAvailable", "number of paths that can carry I/O",
     [](const HealthSummary& s) { return numberValue(s.pathsAvailable); }, kJson},
};

}  // namespace

Value serialOf(const Lun& lun) {
    return lun.serialNumber ? textValue(*lun.serialNumber) : shownAs(lun.serialText, nullptr);
}

Fields<Lun> lunFields() {
    return kLunFields;
}
Fields<HealthSummary> summaryFields() {
    return kSummaryFields;
}

}  // namespace quista::cli

#include "cli/health.h"

#include <array>
#include <fmt/format.h>

#include "cli/format.h"

namespace quista::cli {
namespace {

// A line that names more LUNs than this is no longer read at a glance.
constexpr std::size_t kNamedPerState = 4;

// In the order of urgency.
constexpr std::array kProblems = {Health::kDown, Health::kLastPath, Health::kDegraded,
                                  Health::kUnreadable};

std::string_view phraseOf(Health health) {
    return health == Health::kLastPath ? "on the last path" : healthName(health);
}

struct Group {
    std::size_t count = 0;
    std::string names;

    void add(const Lun& lun) {
        ++count;
        if (count <= kNamedPerState) {
            names += names.empty() ? "" : ", ";
            names += lun.serialText;
        } else if (count == kNamedPerState + 1) {
            names += ", ...";
        }
    }
};

Group groupOf(Health health, std::span<const Lun> luns) {
    Group group;
    for (const Lun& lun : luns) {
        if (healthOf(lun) == health) group.add(lun);
    }
    return group;
}

}  // namespace

Health healthOf(const Lun& lun) {
    if (!lun.hasAllPaths()) return Health::kUnreadable;
    const std::size_t available = lun.pathsAvailable();
    if (available == 0) return Health::kDown;
    if (available == 1) return Health::kLastPath;
    if (!lun.serialNumber) return Health::kUnreadable;
    return available < lun.paths.size() ? Health::kDegraded : Health::kOk;
}

std::string_view healthName(Health health) {
    switch (health) {
        case Health::kOk:
            return "ok";
        case Health::kDegraded:
            return "degraded";
        case Health::kLastPath:
            return "last path";
        case Health::kDown:
            return "down";
        case Health::kUnreadable:
            break;
    }
    return "unreadable";
}

Tone healthTone(Health health) {
    switch (health) {
        case Health::kOk:
            return Tone::kGood;
        case Health::kDegraded:
            return Tone::kWarning;
        default:
            return Tone::kBad;
    }
}

HealthSummary summarize(std::span<const Lun> luns) {
    HealthSummary summary;
    for (const Lun& lun : luns) {
        ++summary.luns;
        summary.paths += lun.pathsReported;
        summary.pathsAvailable += lun.pathsAvailable();
        switch (healthOf(lun)) {
            case Health::kOk:
                ++summary.ok;
                break;
            case Health::kDegraded:
                ++summary.degraded;
                break;
            case Health::kLastPath:
                ++summary.lastPath;
                break;
            case Health::kDown:
                ++summary.down;
                break;
            case Health::kUnreadable:
                ++summary.unreadable;
                break;
        }
    }
    return summary;
}

std::string summaryLine(std::span<const Lun> luns) {
    const HealthSummary summary = summarize(luns);
    std::string line = fmt::format("{}, {} of {} available", formatCount(summary.luns, "LUN"),
                                   summary.pathsAvailable, formatCount(summary.paths, "path"));
    if (summary.ok == summary.luns) return line + ": all ok";
    const char* separator = ": ";
    for (const Health health : kProblems) {
        const Group group = groupOf(health, luns);
        if (group.count == 0) continue;
        line += fmt::format("{}{} {} ({})", separator, group.count, phraseOf(health), group.names);
        separator = "; ";
    }
    return line;
}

}  // namespace quista::cli

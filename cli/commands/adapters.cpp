// The command that lists the host's adapters.
#include <algorithm>
#include <fmt/format.h>

#include "cli/command.h"
#include "cli/format.h"
#include "cli/host_adapters.h"
#include "cli/inventory.h"
#include "cli/path_fields.h"
#include "cli/topology.h"
#include "cli/values.h"

namespace quista::cli {
namespace {

constexpr const char* kIscsi = "iSCSI";

struct Adapter {
    std::optional<std::string> name;
    std::string protocol;
    std::vector<AdapterPort> ports;
    std::vector<Portal> portals;  ///< of an iSCSI initiator

    std::size_t sum(std::size_t (AdapterPort::*count)() const) const {
        std::size_t total = 0;
        for (const AdapterPort& port : ports) total += (port.*count)();
        return total;
    }
};

Value availableOf(std::size_t available, std::size_t total) {
    return shownAs(fmt::format("{}/{}", available, total), nullptr,
                   available < total ? Tone::kWarning : Tone::kPlain);
}

constexpr Field<Adapter> kAdapterFields[] = {
    {"ADAPTER", "adapter", "name of the adapter; null in JSON where nobody knows it",
     [](const Adapter& a) { return optionalText(a.name); }},
    {"PROTOCOL", "protocol", "FC or iSCSI", [](const Adapter& a) { return textValue(a.protocol); }},
    {"PATHS", "paths", "available paths / all paths that it carries",
     [](const Adapter& a) {
         return availableOf(a.sum(&AdapterPort::pathsAvailable), a.sum(&AdapterPort::pathsTotal));
     },
     kText},
    {"", "pathsAvailable", "number of these paths that can carry I/O",
     [](const Adapter& a) { return numberValue(a.sum(&AdapterPort::pathsAvailable)); }, kJson},
    {"", "pathsTotal", "number of paths that it carries",
     [](const Adapter& a) { return numberValue(a.sum(&AdapterPort::pathsTotal)); }, kJson},
};

constexpr Field<AdapterPort> kPortFields[] = {
    {"ADDRESS", "address", "WWN of the port, or the initiator's IP address",
     [](const AdapterPort& p) { return p.adapter ? optionalText(p.adapter->address) : nothing(); }},
    {"SCSI PORT", "scsiPort", "first number of the SCSI addresses behind it",
     [](const AdapterPort& p) { return numberValue(p.scsiPort); }, kEverywhere, Align::kRight},
    {"PATHS", "paths", "available paths / all paths that it carries",
     [](const AdapterPort& p) { return availableOf(p.pathsAvailable(), p.pathsTotal()); }, kText,
     Align::kRight},
    {"", "pathsAvailable", "number of these paths that can carry I/O",
     [](const AdapterPort& p) { return numberValue(p.pathsAvailable()); }, kJson},
    {"", "pathsTotal", "number of paths that it carries",
     [](const AdapterPort& p) { return numberValue(p.pathsTotal()); }, kJson},
    {"LUNS", "luns", "number of LUNs that are reached through it",
     [](const AdapterPort& p) { return numberValue(p.luns()); }, kEverywhere, Align::kRight},
};

// Initiators that wait for nobody have no port.
Value portalText(const Portal& portal) {
    if (!portal.address) return nothing();
    const std::uint64_t port = portal.tcpPort.value_or(0);
    return textValue(port == 0 ? *portal.address : formatPortal(*portal.address, port));
}

constexpr Field<Portal> kPortalFields[] = {
    {"PORTAL", "portal", "IP address and TCP port of an iSCSI initiator", portalText, kText},
    {"", "address", "IP address; null when it cannot be read",
     [](const Portal& p) { return optionalText(p.address); }, kJson},
    {"", "tcpPort", "TCP port", [](const Portal& p) { return optionalNumber(p.tcpPort); }, kJson},
};

Adapter& adapterFor(const std::optional<std::string>& name, const std::string& protocol,
                    std::vector<Adapter>& adapters) {
    const auto known = std::find_if(adapters.begin(), adapters.end(), [&](const Adapter& adapter) {
        return adapter.name == name && adapter.protocol == protocol;
    });
    if (known != adapters.end()) return *known;
    return adapters.emplace_back(Adapter{name, protocol, {}, {}});
}

// Adapters that carry paths, and initiators that carry none.
std::vector<Adapter> adaptersFrom(std::vector<AdapterPort> ports,
                                  const std::vector<Initiator>& initiators) {
    std::vector<Adapter> adapters;
    for (AdapterPort& port : ports) {
        std::optional<std::string> name;
        if (port.adapter) name = port.adapter->name;
        adapterFor(name, port.protocol, adapters).ports.push_back(std::move(port));
    }
    for (const Initiator& initiator : initiators) {
        std::vector<Portal>& portals = adapterFor(initiator.name, kIscsi, adapters).portals;
        portals.insert(portals.end(), initiator.portals.begin(), initiator.portals.end());
    }
    return adapters;
}

bool carries(const AdapterPort& port, const Path& path) {
    return std::any_of(port.targets.begin(), port.targets.end(), [&](const TargetPort& target) {
        return std::any_of(target.paths.begin(), target.paths.end(),
                           [&](const PathOfLun& row) { return row.path == &path; });
    });
}

// Leaves the one adapter with the one port that carries the path.
void narrowTo(const Path& path, std::vector<Adapter>& adapters) {
    for (Adapter& adapter : adapters) {
        std::erase_if(adapter.ports, [&](const AdapterPort& p) { return !carries(p, path); });
    }
    std::erase_if(adapters, [](const Adapter& adapter) { return adapter.ports.empty(); });
}

class AdaptersCommand final : public Command {
  public:
    const char* name() const override { return "adapters"; }
    const char* summary() const override {
        return "List the host's Fibre Channel and iSCSI adapters";
    }
    const char* example() const override {
        return "quistactl adapters --path 0x00000101   the adapter that carries one path";
    }
    std::vector<FieldHelp> fields() const override {
        return joined({fieldHelp(Fields<Adapter>(kAdapterFields)),
                       fieldHelp(Fields<AdapterPort>(kPortFields)),
                       fieldHelp(Fields<Portal>(kPortalFields))});
    }

    void declare(Arguments& arguments) override {
        arguments.option("--path", "ID", pathId_,
                         "Only the adapter that carries this path, as paths prints it",
                         checkPathId);
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        std::vector<Lun> luns = readLuns(session, report);
        const bool isAboutAll = pathId_.empty();
        findAdapters(session, luns, isAboutAll ? Severity::kError : Severity::kWarning, report);
        const std::vector<Initiator> initiators = readInitiators(session, luns, report);
        std::vector<Adapter> adapters = adaptersFrom(adapterPortsOf(luns), initiators);
        if (isAboutAll) {
            reportGaps(luns, report);
        } else {
            narrowToPath(luns, adapters, report);
        }
        addAdapters(adapters, report);
    }

  private:
    void narrowToPath(const std::vector<Lun>& luns, std::vector<Adapter>& adapters,
                      Report& report) const {
        const auto path = selectPath(luns, parsePathId(pathId_).value_or(0), report);
        if (!path) {
            adapters.clear();
            return;
        }
        narrowTo(*path->path, adapters);
        report.sections.push_back(
            sectionOf("paths", kTable, pathAndAdapterFields(), std::vector{*path}));
        if (path->path->adapter) return;
        report.add(Severity::kError, fmt::format("the adapter of the path {} is unknown",
                                                 formatPathId(path->path->id)));
        report.fail(ExitCode::kFailed, DSM_SUCCESS);
    }

    static void addAdapters(const std::vector<Adapter>& adapters, Report& report) {
        Section section =
            sectionOf("adapters", kDetails, Fields<Adapter>(kAdapterFields), adapters);
        for (std::size_t i = 0; i < adapters.size(); ++i) {
            std::vector<Section>& children = section.rows[i].children;
            children.push_back(
                sectionOf("ports", kNested, Fields<AdapterPort>(kPortFields), adapters[i].ports));
            if (adapters[i].protocol != kIscsi) continue;
            children.push_back(
                sectionOf("portals", kNested, Fields<Portal>(kPortalFields), adapters[i].portals));
        }
        report.sections.push_back(std::move(section));
        if (adapters.empty() && report.exitCode == ExitCode::kDone) {
            report.add(Severity::kInfo, "no adapters found");
        }
    }

    std::string pathId_;
};

}  // namespace

std::unique_ptr<Command> makeAdaptersCommand() {
    return std::make_unique<AdaptersCommand>();
}

}  // namespace quista::cli

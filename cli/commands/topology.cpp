// The command that draws how the LUNs are reached.
#include "cli/topology.h"

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/format.h"
#include "cli/health.h"
#include "cli/host_adapters.h"
#include "cli/inventory.h"
#include "cli/lun_fields.h"
#include "cli/path_fields.h"

namespace quista::cli {
namespace {

constexpr unsigned kTreeAndJson = kTree | kJson;

struct Host {
    std::string name;
    bool isSimulated = false;
};

constexpr Field<Host> kHostFields[] = {
    {"", "host", "name of the host",
     [](const Host& host) {
         return shownAs(host.isSimulated ? host.name + " (simulated)" : host.name, host.name);
     },
     kTreeAndJson},
    {"", "simulated", "whether it is a simulated one",
     [](const Host& host) { return yesOrNo(host.isSimulated); }, kJson},
};

// A branch that has lost paths stands out.
Value availablePaths(std::size_t available, std::size_t total) {
    Tone tone = Tone::kGood;
    if (available < total) tone = available == 0 ? Tone::kBad : Tone::kWarning;
    return shownAs(fmt::format("{}/{}", available, total), nullptr, tone);
}

constexpr Field<AdapterPort> kPortFields[] = {
    {"", "adapter", "adapter of the host; null in JSON where nobody knows it",
     [](const AdapterPort& p) {
         return p.adapter ? textValue(p.adapter->name) : shownAs("unknown adapter", nullptr);
     },
     kTreeAndJson},
    {"", "protocol", "FC or iSCSI", [](const AdapterPort& p) { return textValue(p.protocol); },
     kTreeAndJson},
    {"", "adapterAddress", "WWN of the adapter's port, or the initiator's IP address",
     [](const AdapterPort& p) { return p.adapter ? optionalText(p.adapter->address) : nothing(); },
     kTreeAndJson},
    {"", "scsiPort", "first number of the SCSI addresses behind it",
     [](const AdapterPort& p) {
         return shownAs(fmt::format("SCSI port {}", p.scsiPort), std::uint64_t{p.scsiPort});
     },
     kTreeAndJson},
    {"", "paths", "available paths / all paths behind it",
     [](const AdapterPort& p) { return availablePaths(p.pathsAvailable(), p.pathsTotal()); }, kTree,
     Align::kRight},
    {"", "pathsAvailable", "number of paths behind it that can carry I/O",
     [](const AdapterPort& p) { return numberValue(p.pathsAvailable()); }, kJson},
    {"", "pathsTotal", "number of paths behind it",
     [](const AdapterPort& p) { return numberValue(p.pathsTotal()); }, kJson},
};

constexpr Field<TargetPort> kTargetFields[] = {
    {"", "targetAdapter", "port or network interface of the storage system",
     [](const TargetPort& t) { return optionalText(t.name); }, kTreeAndJson},
    {"", "target", "target port: WWN, or address and TCP port",
     [](const TargetPort& t) { return optionalText(t.address); }, kTreeAndJson},
    {"", "storageSystem", "storage system that the port belongs to",
     [](const TargetPort& t) { return optionalText(t.storageSystem); }, kTreeAndJson},
};

constexpr Field<PathOfLun> kPathFields[] = {
    {"", "serialNumber", "serial number of the LUN",
     [](const PathOfLun& row) { return serialOf(*row.lun); }, kTreeAndJson},
    {"", "size", "size of the LUN; bytes in JSON",
     [](const PathOfLun& row) { return shownAs(formatSize(row.lun->size), row.lun->size); },
     kTreeAndJson, Align::kRight},
    {"", "lunPath", "path of the LUN on the storage system",
     [](const PathOfLun& row) { return optionalText(row.lun->lunPath); }, kTreeAndJson},
    {"", "id", "identifier of the path",
     [](const PathOfLun& row) { return textValue(formatPathId(row.path->id)); }, kTreeAndJson},
    {"", "state", "the driver's state of the path",
     [](const PathOfLun& row) { return stateOf(*row.path); }, kTreeAndJson},
    {"", "available", "whether the path can carry I/O",
     [](const PathOfLun& row) { return yesOrNo(row.path->isAvailable()); }, kJson},
    {"", "primary", "whether it is the primary path of its LUN",
     [](const PathOfLun& row) { return yesOrNo(row.path->isPrimary); }, kJson},
    {"", "proxy", "whether it leads through the partner of the LUN's owner",
     [](const PathOfLun& row) { return yesOrNo(row.path->isProxy); }, kJson},
};

Section targetsOf(const AdapterPort& port) {
    Section section = sectionOf("targets", kTree, Fields<TargetPort>(kTargetFields), port.targets);
    for (std::size_t i = 0; i < port.targets.size(); ++i) {
        section.rows[i].children.push_back(
            sectionOf("paths", kTree, Fields<PathOfLun>(kPathFields), port.targets[i].paths));
    }
    return section;
}

Section treeOf(const Host& host, const std::vector<AdapterPort>& ports) {
    Section below = sectionOf("adapterPorts", kTree, Fields<AdapterPort>(kPortFields), ports);
    for (std::size_t i = 0; i < ports.size(); ++i) {
        below.rows[i].children.push_back(targetsOf(ports[i]));
    }
    Section section = sectionOf("topology", kTree, Fields<Host>(kHostFields), {host});
    section.isSingle = true;
    section.rows.front().children.push_back(std::move(below));
    return section;
}

class TopologyCommand final : public Command {
  public:
    const char* name() const override { return "topology"; }
    const char* summary() const override {
        return "Draw host, adapters, target ports and LUNs as a tree";
    }
    const char* example() const override {
        return "quistactl topology kvA7r2Qm9T01   how one LUN is reached";
    }
    std::vector<FieldHelp> fields() const override {
        return joined({fieldHelp(Fields<Host>(kHostFields)),
                       fieldHelp(Fields<AdapterPort>(kPortFields)),
                       fieldHelp(Fields<TargetPort>(kTargetFields)),
                       fieldHelp(Fields<PathOfLun>(kPathFields))});
    }

    void declare(Arguments& arguments) override {
        arguments.optional("SERIAL", serial_, "Serial number of a LUN");
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        std::vector<Lun> luns = readWantedLuns(session, serial_, report);
        findAdapters(session, luns, Severity::kError, report);
        const Host host{session.hostName(), session.isSimulated()};
        report.sections.push_back(treeOf(host, adapterPortsOf(luns)));
        if (!luns.empty()) report.summary.push_back(summaryLine(luns));
        if (luns.empty() && report.exitCode == ExitCode::kDone) {
            report.add(Severity::kInfo, "no LUNs found");
        }
    }

  private:
    std::string serial_;
};

}  // namespace

std::unique_ptr<Command> makeTopologyCommand() {
    return std::make_unique<TopologyCommand>();
}

}  // namespace quista::cli

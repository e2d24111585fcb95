#include <optional>

#include "cli/command.h"
#include "cli/framework.h"
#include "cli/inventory.h"
#include "cli/lun_fields.h"
#include "cli/simulated_windows_folder.h"

namespace quista::cli {
namespace {

// Yes is as it should be.
Value isThere(bool value) {
    return shownAs(value ? "yes" : "no", value, value ? Tone::kGood : Tone::kBad);
}

constexpr Field<Framework> kStatusFields[] = {
    {"MPIO PRESENT", "mpioPresent", "whether MPIO answers",
     [](const Framework& f) { return isThere(f.isMpioPresent); }},
    {"DSM INSTALLED", "dsmInstalled", "whether the vendor's DSM is registered with MPIO",
     [](const Framework& f) { return isThere(f.isDsmInstalled); }},
    {"DSM LOADED", "dsmLoaded", "whether a controller is served by the vendor's DSM",
     [](const Framework& f) { return isThere(f.isDsmLoaded); }},
    {"MPIO DISKS", "mpioDisks", "number of disks that MPIO counts, of all DSMs",
     [](const Framework& f) { return optionalNumber(f.mpioDisks); }},
};

constexpr Field<Controller> kControllerFields[] = {
    {"CONTROLLER", "controller", "place of the controller in MPIO's list",
     [](const Controller& c) { return numberValue(c.number); }, kEverywhere, Align::kRight},
    {"STATE", "state", "MPIO's state of the controller",
     [](const Controller& c) { return numberValue(c.state); }, kEverywhere, Align::kRight},
    {"DSM", "dsm", "DSM that serves the controller",
     [](const Controller& c) { return textValue(c.dsm); }},
    {"", "identifierType", "kind of the controller's identifier",
     [](const Controller& c) { return numberValue(c.identifierType); }, kJson},
};

constexpr Field<DriverFile> kFileFields[] = {
    {"FILE", "file", "the program, or a driver's file",
     [](const DriverFile& f) { return textValue(f.name); }},
    {"VERSION", "version", "its file version",
     [](const DriverFile& f) { return optionalText(f.version); }},
    {"DATE", "date", "when it was last written, local time",
     [](const DriverFile& f) { return optionalText(f.date); }},
};

class StatusCommand final : public Command {
  public:
    const char* name() const override { return "status"; }
    const char* summary() const override {
        return "Show whether MPIO and its DSM work, and what is wrong";
    }
    const char* example() const override {
        return "quistactl status               presence, controllers, driver versions, counts";
    }
    std::vector<FieldHelp> fields() const override {
        return joined({fieldHelp(Fields<Framework>(kStatusFields)),
                       fieldHelp(Fields<Controller>(kControllerFields)),
                       fieldHelp(Fields<DriverFile>(kFileFields))});
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        std::optional<SimulatedWindowsFolder> windows;
        if (!context.options.simulatedHost.empty()) {
            windows.emplace(context.process.folder + L"\\hosts\\windows");
        }
        const Framework framework = readFramework(session, report);
        Section status = sectionOf("mpio", kDetails, Fields<Framework>(kStatusFields), {framework});
        status.isSingle = true;
        report.sections.push_back(std::move(status));
        report.sections.push_back(sectionOf(
            "controllers", kTable, Fields<Controller>(kControllerFields), framework.controllers));
        report.sections.push_back(
            sectionOf("drivers", kTable, Fields<DriverFile>(kFileFields), framework.files));
        if (framework.isMpioPresent) addLuns(session, report);
    }

  private:
    // A host whose LUNs cannot be listed still has a status.
    static void addLuns(Session& session, Report& report) {
        std::vector<Lun> luns;
        try {
            luns = readLuns(session, report);
        } catch (const TimedOut&) {
            throw;
        } catch (const Failure& failure) {
            report.add(Severity::kError, failure.what(), failure.status(), failure.hint());
            report.fail(failure.exitCode(), failure.status());
            return;
        }
        reportGaps(luns, report);
        Section summary = sectionOf("summary", kJson, summaryFields(), {summarize(luns)});
        summary.isSingle = true;
        report.sections.push_back(std::move(summary));
        report.summary.push_back(summaryLine(luns));
    }
};

}  // namespace

std::unique_ptr<Command> makeStatusCommand() {
    return std::make_unique<StatusCommand>();
}

}  // namespace quista::cli

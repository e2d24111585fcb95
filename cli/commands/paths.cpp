#include "cli/command.h"
#include "cli/host_adapters.h"
#include "cli/inventory.h"
#include "cli/path_fields.h"

namespace quista::cli {
namespace {

class PathsCommand final : public Command {
  public:
    const char* name() const override { return "paths"; }
    const char* summary() const override { return "List the paths of all LUNs, or of one"; }
    const char* example() const override {
        return "quistactl paths kvA7r2Qm9T01   the paths of one LUN";
    }
    std::vector<FieldHelp> fields() const override { return fieldHelp(pathAndAdapterFields()); }

    void declare(Arguments& arguments) override {
        arguments.optional("SERIAL", serial_, "Serial number of a LUN");
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        std::vector<Lun> luns = readWantedLuns(session, serial_, report);
        findAdapters(session, luns, Severity::kWarning, report);
        std::vector<PathOfLun> paths;
        for (const Lun& lun : luns) {
            const std::vector<PathOfLun> ofLun = pathsOf(lun);
            paths.insert(paths.end(), ofLun.begin(), ofLun.end());
        }
        report.sections.push_back(sectionOf("paths", kTable, pathAndAdapterFields(), paths));
        if (paths.empty() && report.exitCode == ExitCode::kDone) {
            report.add(Severity::kInfo, "no paths found");
        }
    }

  private:
    std::string serial_;
};

}  // namespace

std::unique_ptr<Command> makePathsCommand() {
    return std::make_unique<PathsCommand>();
}

}  // namespace quista::cli

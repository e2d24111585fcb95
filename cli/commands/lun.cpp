#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/inventory.h"
#include "cli/lun_fields.h"
#include "cli/path_fields.h"

namespace quista::cli {
namespace {

class LunCommand final : public Command {
  public:
    const char* name() const override { return "lun"; }
    const char* summary() const override { return "Show one LUN with all details and its paths"; }
    const char* example() const override {
        return "quistactl lun kvA7r2Qm9T01     by the serial number that luns prints";
    }
    std::vector<FieldHelp> fields() const override {
        std::vector<FieldHelp> help = fieldHelp(lunFields());
        const std::vector<FieldHelp> ofPaths = fieldHelp(pathFields());
        help.insert(help.end(), ofPaths.begin(), ofPaths.end());
        return help;
    }

    void declare(CLI::App& app) override {
        addSerial(app, serial_, "Serial number of the LUN")->required();
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        const std::vector<Lun> luns = selectLuns(readLuns(session, report), serial_, report);
        Section section = sectionOf("luns", kDetails, lunFields(), luns);
        for (std::size_t i = 0; i < luns.size(); ++i) {
            section.rows[i].children.push_back(
                sectionOf("paths", kNested, pathFields(), pathsOf(luns[i])));
        }
        report.sections.push_back(std::move(section));
    }

  private:
    std::string serial_;
};

}  // namespace

std::unique_ptr<Command> makeLunCommand() {
    return std::make_unique<LunCommand>();
}

}  // namespace quista::cli

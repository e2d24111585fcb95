
#include "cli/command.h"
#include "cli/host_adapters.h"
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
        return joined({fieldHelp(lunFields()), fieldHelp(pathAndAdapterFields())});
    }

    void declare(Arguments& arguments) override {
        arguments.required("SERIAL", serial_, "Serial number of the LUN");
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        std::vector<Lun> luns = readWantedLuns(session, serial_, report);
        findAdapters(session, luns, Severity::kWarning, report);
        Section section = sectionOf("luns", kDetails, lunFields(), luns);
        for (std::size_t i = 0; i < luns.size(); ++i) {
            section.rows[i].children.push_back(
                sectionOf("paths", kNested, pathAndAdapterFields(), pathsOf(luns[i])));
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

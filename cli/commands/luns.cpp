#include "cli/command.h"
#include "cli/inventory.h"
#include "cli/lun_fields.h"

namespace quista::cli {
namespace {

class LunsCommand final : public Command {
  public:
    const char* name() const override { return "luns"; }
    const char* summary() const override { return "List the LUNs and what is wrong with them"; }
    const char* example() const override {
        return "quistactl luns                 all LUNs with size, policy, paths and state";
    }
    std::vector<FieldHelp> fields() const override { return fieldHelp(lunFields()); }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        const std::vector<Lun> luns = readLuns(session, report);
        reportGaps(luns, report);
        report.sections.push_back(sectionOf("luns", kTable, lunFields(), luns));
        Section summary = sectionOf("summary", kJson, summaryFields(), {summarize(luns)});
        summary.isSingle = true;
        report.sections.push_back(std::move(summary));
        if (luns.empty()) {
            report.add(Severity::kInfo, "no LUNs found");
        } else {
            report.summary.push_back(summaryLine(luns));
        }
    }
};

}  // namespace

std::unique_ptr<Command> makeLunsCommand() {
    return std::make_unique<LunsCommand>();
}

}  // namespace quista::cli

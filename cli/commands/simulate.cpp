#include <windows.h>

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/failure.h"
#include "cli/simulated_host.h"
#include "cli/text.h"

namespace quista::cli {
namespace {

struct MadeHost {
    std::string file;
    std::string source;
};

constexpr Field<MadeHost> kHostFields[] = {
    {"FILE", "file", "the new host's file", [](const MadeHost& h) { return textValue(h.file); }},
    {"FROM", "from", "the host that it was made from",
     [](const MadeHost& h) { return textValue(h.source); }},
};

class SimulateNewCommand final : public Command {
  public:
    const char* name() const override { return "simulate new"; }
    const char* summary() const override { return "Make a simulated host of your own"; }
    const char* example() const override {
        return "quistactl simulate new host.mof --from degraded";
    }
    std::vector<FieldHelp> fields() const override {
        return fieldHelp(Fields<MadeHost>(kHostFields));
    }

    void declare(Arguments& arguments) override {
        arguments.required("FILE", file_, "File of the new host");
        arguments.option("--from", "SAMPLE", source_, "Sample or MOF file to begin with");
        arguments.option("--without", "CLASSES", lost_,
                         "Leave out the classes of korvadsm, pdo, lbpolicy or mpio, for repair");
        arguments.flag("--force", isForced_, "Overwrite a file that exists");
    }

    void execute(const Context& context, Report& report) override {
        const bool exists = GetFileAttributesW(toWide(file_).c_str()) != INVALID_FILE_ATTRIBUTES;
        if (exists && !isForced_) {
            throw Failure(ExitCode::kRefused, DSM_SUCCESS,
                          fmt::format("{} exists; nothing was changed", file_),
                          "--force overwrites it.");
        }
        SimulatedHost host(context.process.folder, source_);
        if (!lost_.empty()) host.removeClasses(lost_);
        host.saveTo(file_);
        Section section =
            sectionOf("host", kTable, Fields<MadeHost>(kHostFields), {MadeHost{file_, source_}});
        section.isSingle = true;
        report.sections.push_back(std::move(section));
    }

  private:
    std::string file_;
    std::string source_ = "standard";
    std::string lost_;
    bool isForced_ = false;
};

}  // namespace

std::unique_ptr<Command> makeSimulateNewCommand() {
    return std::make_unique<SimulateNewCommand>();
}

}  // namespace quista::cli

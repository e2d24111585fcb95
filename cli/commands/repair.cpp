
#include "cli/change.h"
#include "cli/command.h"
#include "cli/hints.h"
#include "quista/frame.h"
#include "quista/mpio.h"

namespace quista::cli {
namespace {

constexpr const char* kCheck =
    "The MOF files lie in the directory that the registry value InstallDir names: check that it "
    "is set and that korvadsm.mof, pdo.mof, lbpolicy.mof and mpio.mof are there, and run it as an "
    "administrator.";

constexpr unsigned char kMpioClasses = 0;
constexpr unsigned char kDsmClasses = 1;

struct ClassSet {
    const char* owner;
    bool isPresent;
};

constexpr Field<ClassSet> kClassFields[] = {
    {"CLASSES", "classes", "whose WMI classes: DSM or MPIO",
     [](const ClassSet& c) { return textValue(c.owner); }},
    {"PRESENT", "present", "whether WMI has them",
     [](const ClassSet& c) {
         return shownAs(c.isPresent ? "yes" : "no", c.isPresent,
                        c.isPresent ? Tone::kGood : Tone::kBad);
     }},
};

std::vector<ClassSet> readClasses(Session& session) {
    const unsigned long dsm =
        session.call("DSMCheckForKORVADSMClasses", [] { return DSMCheckForKORVADSMClasses(); });
    unsigned long disks = 0;
    const unsigned long mpio =
        session.call("DSMGetNumberMpioLUNs", [&] { return DSMGetNumberMpioLUNs(&disks); });
    return {{"DSM", dsm == DSM_SUCCESS}, {"MPIO", mpio == DSM_SUCCESS}};
}

// A repair that knows no installation directory reports success; only the log tells.
unsigned long repair(unsigned char which) {
    const LogMark mark;
    const unsigned long status = DSMRepairWMI(which);
    return status == DSM_SUCCESS && mark.failedStep() ? DSM_WMI_REPAIR_FAIL : status;
}

class RepairCommand final : public Command {
  public:
    const char* name() const override { return "repair"; }
    const char* summary() const override {
        return "Register the DSM's WMI classes anew, from the MOF files of the installation";
    }
    const char* example() const override {
        return "quistactl repair --dry-run     which classes are missing";
    }
    std::vector<FieldHelp> fields() const override {
        return fieldHelp(Fields<ClassSet>(kClassFields));
    }

    void declare(Arguments& arguments) override {
        arguments.flag("--mpio", withMpio_, "MPIO's classes as well");
        addChangeOptions(arguments, changeOptions_, true);
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        if (session.status() == DSM_WMI_CONNECT_FAILED) {
            throw Failure(ExitCode::kFailed, session.status(), "cannot repair the WMI classes",
                          hintFor(session.status()));
        }
        Change change(session, context, report,
                      withMpio_ ? "register the WMI classes of MPIO and the DSM anew"
                                : "register the WMI classes of the DSM anew");
        if (change.isWanted(changeOptions_, true)) {
            // The DSM's classes refer to MPIO's.
            if (withMpio_) change.make("DSMRepairWMI", kCheck, [] { return repair(kMpioClasses); });
            change.make("DSMRepairWMI", kCheck, [] { return repair(kDsmClasses); });
        }
        const std::vector<ClassSet> classes = readClasses(session);
        report.sections.push_back(
            sectionOf("classes", kTable, Fields<ClassSet>(kClassFields), classes));
        if (changeOptions_.isDryRun) return;
        if (!classes[0].isPresent) change.reportNoEffect("the DSM's classes are missing", kCheck);
        if (withMpio_ && !classes[1].isPresent) {
            change.reportNoEffect("MPIO's classes do not answer", kCheck);
        }
    }

  private:
    bool withMpio_ = false;
    ChangeOptions changeOptions_;
};

}  // namespace

std::unique_ptr<Command> makeRepairCommand() {
    return std::make_unique<RepairCommand>();
}

}  // namespace quista::cli

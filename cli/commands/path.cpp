// The commands that steer one path: activate, passivate, enable, disable, refresh, weight.
#include <fmt/format.h>

#include "cli/change.h"
#include "cli/command.h"
#include "cli/format.h"
#include "cli/health.h"
#include "cli/inventory.h"
#include "cli/names.h"
#include "cli/path_fields.h"
#include "cli/values.h"
#include "quista/control.h"
#include "quista/luns.h"

namespace quista::cli {
namespace {

constexpr std::uint8_t kActive = 1;
constexpr std::uint8_t kPassive = 2;
constexpr std::uint8_t kDisabled = 4;

constexpr const char* kCheck =
    "The driver may refuse what the state of the path or the policy of its LUN does not allow: see "
    "quistactl lun SERIAL, and the path's target on the storage system.";

struct Action {
    const char* name;
    const char* summary;
    const char* example;
    const char* verb;      ///< completes "will ...", in front of "the path"
    const char* function;  ///< the library's
    unsigned long (*call)(std::uint32_t id, std::uint32_t weight);
    /// Whether the path is as it should be afterwards.
    bool (*isReached)(const Path& path, std::uint32_t weight);
    bool takesWeight = false;
    bool endsTraffic = false;  ///< so the last available path is refused
    bool isSigned = true;      ///< false: the library widens the identifier without its sign
};

constexpr Action kActions[] = {
    {"path activate", "Make a path active", "quistactl path activate 0x00000103", "activate",
     "KORVADSMMakeActivePath",
     [](std::uint32_t id, std::uint32_t) { return KORVADSMMakeActivePath(widenedPathId(id)); },
     [](const Path& path, std::uint32_t) { return path.state == kActive; }},
    {"path passivate", "Make a path passive: it stands by", "quistactl path passivate 0x00000102",
     "passivate", "KORVADSMMakePassivePath",
     [](std::uint32_t id, std::uint32_t) { return KORVADSMMakePassivePath(widenedPathId(id)); },
     [](const Path& path, std::uint32_t) { return path.state == kPassive; }, false, true},
    {"path enable", "Enable a path again", "quistactl path enable 0x00000102", "enable",
     "KORVADSMEnablePath",
     [](std::uint32_t id, std::uint32_t) { return KORVADSMEnablePath(widenedPathId(id)); },
     [](const Path& path, std::uint32_t) { return path.isAvailable(); }},
    {"path disable", "Disable a path: it carries no I/O",
     "quistactl path disable 0x00000102 --dry-run    what it would do", "disable",
     "KORVADSMDisablePath",
     [](std::uint32_t id, std::uint32_t) { return KORVADSMDisablePath(widenedPathId(id)); },
     [](const Path& path, std::uint32_t) { return path.state == kDisabled; }, false, true},
    {"path refresh", "Read the target port group states of a path's LUN anew",
     "quistactl path refresh 0x00000102", "refresh the target port groups behind",
     "KORVADSMUpdateTPG", [](std::uint32_t id, std::uint32_t) { return KORVADSMUpdateTPG(id); },
     [](const Path&, std::uint32_t) { return true; }, false, false, false},
    {"path weight", "Set the weight of a path, for the policy Weighted Paths",
     "quistactl path weight 0x00000402 10", "set the weight of", "KORVADSMSetPathWeight",
     [](std::uint32_t id, std::uint32_t weight) {
         return KORVADSMSetPathWeight(widenedPathId(id), weight);
     },
     [](const Path& path, std::uint32_t weight) { return path.weight == weight; }, true},
};

class PathCommand final : public Command {
  public:
    explicit PathCommand(const Action& action) : action_(action) {}

    const char* name() const override { return action_.name; }
    const char* summary() const override { return action_.summary; }
    const char* example() const override { return action_.example; }
    std::vector<FieldHelp> fields() const override { return fieldHelp(pathFields()); }

    void declare(Arguments& arguments) override {
        arguments.required("ID", id_, "Identifier of the path, as paths prints it", checkPathId);
        if (action_.takesWeight) {
            arguments.required("N", weight_, "The weight; the path of the lowest one is preferred",
                               checkNumber);
        }
        if (action_.endsTraffic) {
            arguments.flag("--force", isForced_, "Also when it is the last available path");
        }
        addChangeOptions(arguments, changeOptions_, action_.endsTraffic);
    }

    void execute(const Context& context, Report& report) override {
        const std::uint32_t id = parsePathId(id_).value_or(0);
        const std::uint32_t weight = parseNumber(weight_).value_or(0);
        Session session(context);
        const std::vector<Lun> before = readLuns(session, report);
        const auto path = selectPath(before, id, report);
        if (!path) return;
        if (action_.endsTraffic && !isForced_) refuseLastPath(session, *path);
        Change change(session, context, report, describe(*path));
        if (change.isWanted(changeOptions_, action_.endsTraffic)) {
            change.make(action_.function, checkFor(*path),
                        [&] { return action_.call(id, weight); });
        }
        showResult(session, id, weight, change, report);
    }

  private:
    std::string describe(const PathOfLun& path) const {
        std::string text = fmt::format("{} the path {} of the LUN {}", action_.verb,
                                       formatPathId(path.path->id), path.lun->serialText);
        if (action_.takesWeight) text += " to " + weight_;
        return text;
    }

    void refuseLastPath(Session& session, const PathOfLun& path) const {
        int isLast = 0;
        const unsigned long status = session.call("IsLastAvlblPath", [&] {
            return IsLastAvlblPath(widenedPathId(path.path->id), &isLast);
        });
        if (status != DSM_SUCCESS) {
            throw Failure(ExitCode::kFailed, status,
                          "cannot tell whether it is the last path; will not " + describe(path),
                          "--force does it nevertheless.");
        }
        if (isLast == 0) return;
        throw Failure(ExitCode::kRefused, DSM_LAST_ACTIVE_PATH, "will not " + describe(path),
                      "It would leave the LUN without an available path. --force does it "
                      "nevertheless.");
    }

    const char* checkFor(const PathOfLun& path) const {
        const bool isOutOfReach = !action_.isSigned && (path.path->id & 0x80000000u) != 0;
        return isOutOfReach ? "The refresh does not reach identifiers of 0x80000000 and more: name "
                              "another path of the same LUN."
                            : kCheck;
    }

    void showResult(Session& session, std::uint32_t id, std::uint32_t weight, Change& change,
                    Report& report) const {
        const std::vector<Lun> luns = readLuns(session, report);
        const auto path = findPath(luns, id);
        if (!path) {
            change.reportNoEffect("the path is gone", kCheck);
            return;
        }
        report.sections.push_back(sectionOf("paths", kTable, pathFields(), pathsOf(*path->lun)));
        report.summary.push_back(summaryLine({path->lun, 1}));
        if (changeOptions_.isDryRun || action_.isReached(*path->path, weight)) return;
        const std::string found =
            action_.takesWeight ? fmt::format("the weight is {}", path->path->weight)
                                : fmt::format("the path is {}", pathStateName(path->path->state));
        change.reportNoEffect(found, kCheck);
    }

    const Action& action_;
    std::string id_;
    std::string weight_;
    bool isForced_ = false;
    ChangeOptions changeOptions_;
};

}  // namespace

void addPathCommands(Commands& commands) {
    for (const Action& action : kActions) {
        commands.push_back(std::make_unique<PathCommand>(action));
    }
}

}  // namespace quista::cli

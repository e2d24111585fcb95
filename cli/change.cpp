#include "cli/change.h"

#include <algorithm>
#include <fmt/format.h>

namespace quista::cli {
namespace {

struct ChangeRecord {
    const std::string* what;
    bool isMade;
};

constexpr Field<ChangeRecord> kChangeFields[] = {
    {"", "what", "the change", [](const ChangeRecord& c) { return textValue(*c.what); }, kJson},
    {"", "made", "whether it was made", [](const ChangeRecord& c) { return yesOrNo(c.isMade); },
     kJson},
};

}  // namespace

void addChangeOptions(Arguments& arguments, ChangeOptions& options, bool isRisky) {
    arguments.flag("--dry-run", options.isDryRun, "Say what would be changed, and change nothing");
    if (isRisky) arguments.flag("--yes", options.isConfirmed, "Do not ask on a console");
}

bool Change::isWanted(const ChangeOptions& options, bool isRisky) {
    if (options.isDryRun) {
        report_.add(Severity::kInfo, "would " + what_);
        record(false);
        return false;
    }
    if (!isRisky || options.isConfirmed || !context_.process.ask) return true;
    const Watchdog::Pause pause(context_.watchdog);
    if (context_.process.ask("quistactl will " + what_ + ". Go on?").value_or(true)) return true;
    throw Failure(ExitCode::kRefused, DSM_SUCCESS, "not confirmed; nothing was changed");
}

void Change::fail(unsigned long status, const LogMark& mark, const char* check) const {
    Failure failure(ExitCode::kFailed, status, "cannot " + what_, check);
    failure.setStep(mark.failedStep());
    throw failure;
}

void Change::record(bool isMade) {
    const bool isRecorded =
        std::any_of(report_.sections.begin(), report_.sections.end(),
                    [](const Section& section) { return section.key == "change"; });
    if (isRecorded) return;
    Section section = sectionOf("change", kJson, Fields<ChangeRecord>(kChangeFields),
                                {ChangeRecord{&what_, isMade}});
    section.isSingle = true;
    report_.sections.push_back(std::move(section));
}

void Change::reportNoEffect(const std::string& found, const char* check) {
    report_.add(Severity::kError,
                fmt::format("the call to {} reports success, but {}", what_, found), DSM_SUCCESS,
                check);
    report_.fail(ExitCode::kFailed, DSM_SUCCESS);
}

}  // namespace quista::cli

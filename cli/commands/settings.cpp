// The commands for numbers that have a name: MPIO's timers, and the parameters of the DSM.
#include <fmt/format.h>
#include <limits>
#include <span>

#include "cli/change.h"
#include "cli/command.h"
#include "cli/hints.h"
#include "cli/text.h"
#include "cli/values.h"
#include "quista/control.h"

namespace quista::cli {
namespace {

constexpr std::uint32_t kAnyNumber = std::numeric_limits<std::uint32_t>::max();
constexpr const char* kCheck =
    "Check that Multipath I/O and the vendor's DSM are installed, and run it as an administrator.";

struct Setting {
    const char* name;
    const char* unit;
    const char* meaning;
    std::uint32_t maximum;
    const char* getter;  ///< the library's functions
    unsigned long (*get)(std::uint32_t& value);
    const char* setter;
    unsigned long (*set)(std::uint32_t value);
};

template <auto Get>
unsigned long getTimer(std::uint32_t& value) {
    unsigned long number = 0;
    const unsigned long status = Get(&number);
    value = number;
    return status;
}

template <auto Set>
unsigned long setTimer(std::uint32_t value) {
    return Set(value);
}

unsigned long getPathVerify(std::uint32_t& value) {
    unsigned char enabled = 0;
    const unsigned long status = DSMGetPathVerifyEnabled(&enabled);
    value = enabled;
    return status;
}

unsigned long setPathVerify(std::uint32_t value) {
    return DSMSetPathVerifyEnabled(static_cast<unsigned char>(value));
}

constexpr Setting kTimers[] = {
    {"PathVerifyEnabled", "", "whether MPIO verifies paths: 1 or 0", 1, "DSMGetPathVerifyEnabled",
     getPathVerify, "DSMSetPathVerifyEnabled", setPathVerify},
    {"PathVerificationPeriod", "s", "how often MPIO verifies paths", kAnyNumber,
     "DSMGetPathVerificationPeriod", getTimer<DSMGetPathVerificationPeriod>,
     "DSMSetPathVerificationPeriod", setTimer<DSMSetPathVerificationPeriod>},
    {"PDORemovePeriod", "s", "how long MPIO keeps a disk after its last path has gone", kAnyNumber,
     "DSMGetPDORemovePeriod", getTimer<DSMGetPDORemovePeriod>, "DSMSetPDORemovePeriod",
     setTimer<DSMSetPDORemovePeriod>},
    {"RetryCount", "", "how often MPIO retries a failed request", kAnyNumber, "DSMGetRetryCount",
     getTimer<DSMGetRetryCount>, "DSMSetRetryCount", setTimer<DSMSetRetryCount>},
    {"RetryInterval", "s", "how long MPIO waits between retries", kAnyNumber, "DSMGetRetryInterval",
     getTimer<DSMGetRetryInterval>, "DSMSetRetryInterval", setTimer<DSMSetRetryInterval>},
};

template <auto Field>
unsigned long getParameter(std::uint32_t& value) {
    _QUISTA_PROPERTY_SET set{};
    const unsigned long status = DSMGetKorvadsmParameters(0, &set);
    value = set.*Field;
    return status;
}

// The library writes all parameters at once, so the others are read first.
template <auto Field>
unsigned long setParameter(std::uint32_t value) {
    _QUISTA_PROPERTY_SET set{};
    const unsigned long status = DSMGetKorvadsmParameters(0, &set);
    if (status != DSM_SUCCESS) return status;
    set.*Field = value;
    return DSMSetKorvadsmParameters(0, &set);
}

template <auto Field>
constexpr Setting parameter(const char* name, const char* unit, const char* meaning) {
    return {name,
            unit,
            meaning,
            kAnyNumber,
            "DSMGetKorvadsmParameters",
            getParameter<Field>,
            "DSMSetKorvadsmParameters",
            setParameter<Field>};
}

constexpr Setting kParameters[] = {
    parameter<&_QUISTA_PROPERTY_SET::EventLogLevel>("EventLogLevel", "",
                                                    "how much the DSM writes to the event log"),
    parameter<&_QUISTA_PROPERTY_SET::PDORemovePeriod>(
        "PDORemovePeriod", "s", "how long the DSM keeps a disk after its last path has gone"),
    parameter<&_QUISTA_PROPERTY_SET::RetryCount>("RetryCount", "",
                                                 "how often the DSM retries a failed request"),
    parameter<&_QUISTA_PROPERTY_SET::RetryInterval>("RetryInterval", "s",
                                                    "how long the DSM waits between retries"),
};

struct SettingGroup {
    const char* key;  ///< of the JSON section
    std::span<const Setting> settings;
    const char* showName;
    const char* showSummary;
    const char* showExample;
    const char* setName;
    const char* setSummary;
    const char* setExample;
};

constexpr SettingGroup kGroups[] = {
    {"timers", kTimers, "timers show", "Show MPIO's timers", "quistactl timers show --json",
     "timers set", "Set one of MPIO's timers", "quistactl timers set PDORemovePeriod 130"},
    {"parameters", kParameters, "parameters show", "Show the parameters of the DSM",
     "quistactl parameters show", "parameters set", "Set one parameter of the DSM",
     "quistactl parameters set RetryCount 6"},
};

struct ReadSetting {
    const Setting* setting;
    std::uint32_t value;
};

constexpr Field<ReadSetting> kSettingFields[] = {
    {"NAME", "name", "name of the timer or parameter",
     [](const ReadSetting& s) { return textValue(s.setting->name); }},
    {"VALUE", "value", "its value", [](const ReadSetting& s) { return numberValue(s.value); },
     kEverywhere, Align::kRight},
    {"UNIT", "unit", "unit of the value: s for seconds",
     [](const ReadSetting& s) { return textUnlessEmpty(s.setting->unit); }},
    {"MEANING", "meaning", "what it is",
     [](const ReadSetting& s) { return textValue(s.setting->meaning); }, kEverywhere, Align::kText},
};

std::vector<FieldHelp> settingHelp() {
    return fieldHelp(Fields<ReadSetting>(kSettingFields));
}

std::uint32_t readSetting(Session& session, const Setting& setting) {
    std::uint32_t value = 0;
    const LogMark mark;
    const unsigned long status = session.call(setting.getter, [&] { return setting.get(value); });
    if (status == DSM_SUCCESS) return value;
    Failure failure(ExitCode::kFailed, status, fmt::format("cannot read {}", setting.name),
                    hintFor(status));
    failure.setStep(mark.failedStep());
    throw failure;
}

void showSettings(Session& session, const SettingGroup& group, Report& report) {
    std::vector<ReadSetting> values;
    for (const Setting& setting : group.settings) {
        values.push_back({&setting, readSetting(session, setting)});
    }
    report.sections.push_back(
        sectionOf(group.key, kTable, Fields<ReadSetting>(kSettingFields), values));
}

const Setting* findSetting(const SettingGroup& group, const std::string& name) {
    for (const Setting& setting : group.settings) {
        if (equalIgnoringCase(setting.name, name)) return &setting;
    }
    return nullptr;
}

std::string checkName(const SettingGroup& group, const std::string& name) {
    if (findSetting(group, name) != nullptr) return {};
    std::string names;
    for (const Setting& setting : group.settings) {
        names += fmt::format("{}{}", names.empty() ? "" : ", ", setting.name);
    }
    return fmt::format("expected one of {}, got '{}'", names, name);
}

class ShowCommand final : public Command {
  public:
    explicit ShowCommand(const SettingGroup& group) : group_(group) {}
    const char* name() const override { return group_.showName; }
    const char* summary() const override { return group_.showSummary; }
    const char* example() const override { return group_.showExample; }
    std::vector<FieldHelp> fields() const override { return settingHelp(); }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        showSettings(session, group_, report);
    }

  private:
    const SettingGroup& group_;
};

class SetCommand final : public Command {
  public:
    explicit SetCommand(const SettingGroup& group) : group_(group) {}
    const char* name() const override { return group_.setName; }
    const char* summary() const override { return group_.setSummary; }
    const char* example() const override { return group_.setExample; }
    std::vector<FieldHelp> fields() const override { return settingHelp(); }

    void declare(Arguments& arguments) override {
        arguments.required("NAME", name_, "What to set; case does not count",
                           [this](const std::string& text) { return checkName(group_, text); });
        arguments.required("VALUE", value_, "Its new value", checkNumber);
        addChangeOptions(arguments, changeOptions_, false);
    }

    void execute(const Context& context, Report& report) override {
        const Setting& setting = *findSetting(group_, name_);
        const std::uint32_t value = parseNumber(value_).value_or(0);
        if (value > setting.maximum) {
            throw UsageError(fmt::format("{}: expected 0 to {}, got '{}'", setting.name,
                                         setting.maximum, value_));
        }
        Session session(context);
        const std::uint32_t before = readSetting(session, setting);
        Change change(session, context, report,
                      fmt::format("change {} from {} to {}", setting.name, before, value));
        if (change.isWanted(changeOptions_, false)) {
            change.make(setting.setter, kCheck, [&] { return setting.set(value); });
        }
        showSettings(session, group_, report);
        if (changeOptions_.isDryRun) return;
        const std::uint32_t after = readSetting(session, setting);
        if (after != value) change.reportNoEffect(fmt::format("it is {}", after), kCheck);
    }

  private:
    const SettingGroup& group_;
    std::string name_;
    std::string value_;
    ChangeOptions changeOptions_;
};

}  // namespace

void addSettingCommands(Commands& commands) {
    for (const SettingGroup& group : kGroups) {
        commands.push_back(std::make_unique<ShowCommand>(group));
        commands.push_back(std::make_unique<SetCommand>(group));
    }
}

}  // namespace quista::cli

// The commands for load-balance policies: policy show, set and default.
#include <algorithm>
#include <fmt/format.h>
#include <memory>

#include "cli/change.h"
#include "cli/chatter_guard.h"
#include "cli/command.h"
#include "cli/hints.h"
#include "cli/inventory.h"
#include "cli/lun_fields.h"
#include "cli/names.h"
#include "cli/text.h"
#include "cli/values.h"
#include "quista/control.h"

namespace quista::cli {
namespace {

constexpr const char* kCheck =
    "quistactl policy show SERIAL lists the policies that the LUN supports; the software of the "
    "storage system may be too old for some.";
constexpr const char* kDefaultCheck =
    "Check that the vendor's DSM is installed, and run it as an administrator.";

struct PolicyOfLun {
    std::string serialNumber;
    std::uint32_t policy = 0;
    bool isCurrent = false;
    bool isSupported = false;
};

constexpr Field<PolicyOfLun> kPolicyFields[] = {
    {"SERIAL", "serialNumber", "serial number of the LUN",
     [](const PolicyOfLun& p) { return textValue(p.serialNumber); }},
    {"POLICY", "policy", "load-balance policy, MPIO's number and name",
     [](const PolicyOfLun& p) { return namedValue(policyName(p.policy), p.policy); }},
    {"CURRENT", "current", "whether the LUN has it now",
     [](const PolicyOfLun& p) { return yesOrNo(p.isCurrent); }},
    {"SUPPORTED", "supported", "whether the LUN supports it",
     [](const PolicyOfLun& p) { return yesOrNo(p.isSupported); }},
};

constexpr Field<std::uint32_t> kDefaultFields[] = {
    {"DEFAULT POLICY", "policy", "policy of LUNs that are new to the host, number and name",
     [](const std::uint32_t& policy) { return namedValue(policyName(policy), policy); }},
};

// The list that the library fills. It stores each policy by its position among those that the LUN
// publishes, however many they are, so there is room for many more than there are policies.
class PolicyList {
  public:
    PolicyList() : block_(new unsigned char[kSize]()) {}
    ~PolicyList() {
        // Gaps are not counted, so all of the list is handed back.
        list()->Count = kEntries;
        LBPDescFree(list());
    }
    PolicyList(const PolicyList&) = delete;
    PolicyList& operator=(const PolicyList&) = delete;

    _LBP_DESCRIPTOR_LIST* list() { return reinterpret_cast<_LBP_DESCRIPTOR_LIST*>(block_.get()); }

    std::vector<std::uint32_t> policies() {
        unsigned long* const* entries = list()->Descriptor;
        std::vector<std::uint32_t> policies;
        for (std::size_t i = 0; i < kEntries; ++i) {
            if (entries[i] != nullptr) policies.push_back(*entries[i]);
        }
        return policies;
    }

  private:
    static constexpr unsigned long kEntries = 65536;
    static constexpr std::size_t kSize =
        sizeof(_LBP_DESCRIPTOR_LIST) + kEntries * sizeof(unsigned long*);

    std::unique_ptr<unsigned char[]> block_;
};

std::vector<std::uint32_t> readSupported(Session& session, const std::string& serial,
                                         Report& report) {
    PolicyList list;
    std::wstring wideSerial = toWide(serial);
    const LogMark mark;
    const unsigned long status = session.call("KORVADSMGetDiskPolicies", [&] {
        return KORVADSMGetDiskPolicies(wideSerial.data(), list.list());
    });
    // A list that could not be read completely still counts as a success of the call.
    const auto step = mark.failedStep();
    if (status != DSM_SUCCESS || step) {
        report.add(Severity::kError,
                   fmt::format("cannot read all policies that the LUN {} supports", serial), status,
                   hintFor(status == DSM_SUCCESS ? DSM_WMI_PARSING_ERROR : status));
        report.messages.back().step = step;
        report.fail(ExitCode::kFailed, status == DSM_SUCCESS ? DSM_WMI_PARSING_ERROR : status);
    }
    return list.policies();
}

std::vector<PolicyOfLun> policiesOf(const Lun& lun, const std::vector<std::uint32_t>& supported) {
    std::vector<PolicyOfLun> policies;
    for (const std::uint32_t policy : supported) {
        policies.push_back({lun.serialText, policy, policy == lun.policy, true});
    }
    if (std::find(supported.begin(), supported.end(), lun.policy) == supported.end()) {
        policies.push_back({lun.serialText, lun.policy, true, false});
    }
    return policies;
}

class PolicyShowCommand final : public Command {
  public:
    const char* name() const override { return "policy show"; }
    const char* summary() const override { return "Show a LUN's policy and those it supports"; }
    const char* example() const override { return "quistactl policy show kvA7r2Qm9T01"; }
    std::vector<FieldHelp> fields() const override {
        return fieldHelp(Fields<PolicyOfLun>(kPolicyFields));
    }
    void declare(Arguments& arguments) override {
        arguments.required("SERIAL", serial_, "Serial number of the LUN");
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        const std::vector<Lun> luns = readWantedLuns(session, serial_, report);
        std::vector<PolicyOfLun> policies;
        if (!luns.empty()) {
            policies = policiesOf(luns.front(), readSupported(session, serial_, report));
        }
        report.sections.push_back(
            sectionOf("policies", kTable, Fields<PolicyOfLun>(kPolicyFields), policies));
    }

  private:
    std::string serial_;
};

class PolicySetCommand final : public Command {
  public:
    const char* name() const override { return "policy set"; }
    const char* summary() const override { return "Set a LUN's policy"; }
    const char* example() const override { return "quistactl policy set kvA7r2Qm9T01 round-robin"; }
    std::vector<FieldHelp> fields() const override { return fieldHelp(lunFields()); }
    void declare(Arguments& arguments) override {
        arguments.required("SERIAL", serial_, "Serial number of the LUN");
        arguments.required("POLICY", policy_, "The policy, by number or name", checkPolicy);
        addChangeOptions(arguments, changeOptions_, true);
    }

    void execute(const Context& context, Report& report) override {
        const std::uint32_t policy = parsePolicy(policy_).value_or(0);
        Session session(context);
        const std::vector<Lun> before = readWantedLuns(session, serial_, report);
        if (before.empty()) return;
        if (before.size() > 1) {
            throw Failure(ExitCode::kRefused, DSM_SUCCESS,
                          fmt::format("{} LUNs have the serial number {}; will not guess which one "
                                      "is meant",
                                      before.size(), serial_));
        }
        Change change(session, context, report,
                      fmt::format("change the policy of the LUN {} from {} to {}", serial_,
                                  policyName(before.front().policy), policyName(policy)));
        if (change.isWanted(changeOptions_, true)) {
            std::wstring serial = toWide(serial_);
            _DSM_LOAD_BALANCE_TYPE type{policy};
            change.make("KORVADSMSetDiskPolicy", kCheck, [&] {
                // It prints that it found the LUN.
                const MutedChatter muted;
                return KORVADSMSetDiskPolicy(serial.data(), &type);
            });
        }
        showResult(session, policy, change, report);
    }

  private:
    void showResult(Session& session, std::uint32_t policy, Change& change, Report& report) const {
        const std::vector<Lun> luns = readWantedLuns(session, serial_, report);
        report.sections.push_back(sectionOf("luns", kTable, lunFields(), luns));
        if (changeOptions_.isDryRun || luns.empty() || luns.front().policy == policy) return;
        change.reportNoEffect(fmt::format("the policy is {} ({})", policyName(luns.front().policy),
                                          luns.front().policy),
                              kCheck);
    }

    std::string serial_;
    std::string policy_;
    ChangeOptions changeOptions_;
};

class PolicyDefaultCommand final : public Command {
  public:
    const char* name() const override { return "policy default"; }
    const char* summary() const override {
        return "Show or set the policy of LUNs that are new to the host";
    }
    const char* example() const override { return "quistactl policy default least-blocks"; }
    std::vector<FieldHelp> fields() const override {
        return fieldHelp(Fields<std::uint32_t>(kDefaultFields));
    }
    void declare(Arguments& arguments) override {
        arguments.optional("POLICY", policy_, "The policy to set, by number or name", checkPolicy);
        addChangeOptions(arguments, changeOptions_, false);
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        const auto policy = parsePolicy(policy_);
        if (!policy) {
            show(readDefault(session), report);
            return;
        }
        Change change(session, context, report,
                      fmt::format("set the default policy to {}", policyName(*policy)));
        if (change.isWanted(changeOptions_, false)) {
            change.make("KORVADSMSetDefaultLBP", kDefaultCheck,
                        [&] { return KORVADSMSetDefaultLBP(static_cast<int>(*policy)); });
        }
        const std::uint32_t found = readDefault(session);
        show(found, report);
        if (changeOptions_.isDryRun || found == *policy) return;
        change.reportNoEffect(fmt::format("it is {} ({})", policyName(found), found),
                              kDefaultCheck);
    }

  private:
    static std::uint32_t readDefault(Session& session) {
        int policy = 0;
        const LogMark mark;
        const unsigned long status =
            session.call("KORVADSMGetDefaultLBP", [&] { return KORVADSMGetDefaultLBP(&policy); });
        if (status == DSM_SUCCESS) return static_cast<std::uint32_t>(policy);
        Failure failure(ExitCode::kFailed, status, "cannot read the default policy", kDefaultCheck);
        failure.setStep(mark.failedStep());
        throw failure;
    }

    static void show(std::uint32_t policy, Report& report) {
        Section section =
            sectionOf("defaultPolicy", kDetails, Fields<std::uint32_t>(kDefaultFields), {policy});
        section.isSingle = true;
        report.sections.push_back(std::move(section));
    }

    std::string policy_;
    ChangeOptions changeOptions_;
};

}  // namespace

void addPolicyCommands(Commands& commands) {
    commands.push_back(std::make_unique<PolicyShowCommand>());
    commands.push_back(std::make_unique<PolicySetCommand>());
    commands.push_back(std::make_unique<PolicyDefaultCommand>());
}

}  // namespace quista::cli

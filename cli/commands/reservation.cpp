// The commands for the persistent reservation key: reservation show and set.
#include <fmt/format.h>

#include "cli/change.h"
#include "cli/command.h"
#include "cli/format.h"
#include "cli/hints.h"
#include "cli/inventory.h"
#include "cli/text.h"
#include "cli/values.h"
#include "quista/control.h"

namespace quista::cli {
namespace {

using Key = std::array<std::uint8_t, 8>;

constexpr const char* kRegistryCheck =
    "Run it as an administrator, and check that the DSM's service korvadsm is installed.";
constexpr const char* kDriverCheck =
    "Check that the vendor's DSM is installed, and run it as an administrator.";

struct PlacedKey {
    const char* place;
    std::optional<std::string> serialNumber;
    std::optional<Key> key;
};

constexpr Field<PlacedKey> kKeyFields[] = {
    {"PLACE", "place", "where the key is: registry or LUN",
     [](const PlacedKey& k) { return textValue(k.place); }},
    {"SERIAL", "serialNumber", "serial number of the LUN",
     [](const PlacedKey& k) { return optionalText(k.serialNumber); }},
    {"KEY", "key", "persistent reservation key, 16 hexadecimal digits",
     [](const PlacedKey& k) {
         return k.key ? textValue(formatReservationKey(*k.key)) : nothing();
     }},
};

std::vector<FieldHelp> keyHelp() {
    return fieldHelp(Fields<PlacedKey>(kKeyFields));
}

PlacedKey readRegistry(Session& session) {
    Key key{};
    const unsigned long status =
        session.call("Reg_Get_PR", [&] { return Reg_Get_PR(reinterpret_cast<char*>(key.data())); });
    return {"registry", {}, status == DSM_SUCCESS ? std::optional(key) : std::nullopt};
}

// A LUN whose serial number cannot be read cannot be asked; its gap is reported elsewhere.
PlacedKey readLun(Session& session, const Lun& lun, Report& report) {
    PlacedKey placed{"LUN", lun.serialNumber, {}};
    if (!lun.serialNumber) return placed;
    std::wstring serial = toWide(*lun.serialNumber);
    Key key{};
    const LogMark mark;
    const unsigned long status = session.call(
        "KORVADSMGetPRKey", [&] { return KORVADSMGetPRKey(key.data(), serial.data()); });
    if (status == DSM_SUCCESS) {
        placed.key = key;
        return placed;
    }
    report.add(Severity::kError,
               fmt::format("cannot read the reservation key of the LUN {}", lun.serialText), status,
               hintFor(status));
    report.messages.back().step = mark.failedStep();
    report.fail(ExitCode::kFailed, status);
    return placed;
}

std::vector<PlacedKey> readKeys(Session& session, const std::vector<Lun>& luns, Report& report) {
    std::vector<PlacedKey> keys = {readRegistry(session)};
    if (!keys.front().key) report.add(Severity::kInfo, "the registry holds no reservation key");
    for (const Lun& lun : luns) keys.push_back(readLun(session, lun, report));
    return keys;
}

class ReservationShowCommand final : public Command {
  public:
    const char* name() const override { return "reservation show"; }
    const char* summary() const override {
        return "Show the persistent reservation key in the registry and in the LUNs";
    }
    const char* example() const override { return "quistactl reservation show kvA7r2Qm9T01"; }
    std::vector<FieldHelp> fields() const override { return keyHelp(); }
    void declare(Arguments& arguments) override {
        arguments.optional("SERIAL", serial_, "Serial number of a LUN");
    }

    void execute(const Context& context, Report& report) override {
        Session session(context);
        const std::vector<Lun> luns = readWantedLuns(session, serial_, report);
        report.sections.push_back(sectionOf("keys", kTable, Fields<PlacedKey>(kKeyFields),
                                            readKeys(session, luns, report)));
    }

  private:
    std::string serial_;
};

class ReservationSetCommand final : public Command {
  public:
    const char* name() const override { return "reservation set"; }
    const char* summary() const override {
        return "Set the host's persistent reservation key, in the registry and in the driver";
    }
    const char* example() const override { return "quistactl reservation set 4b56000000005a01"; }
    std::vector<FieldHelp> fields() const override { return keyHelp(); }

    void declare(Arguments& arguments) override {
        arguments.required("KEY", key_, "The key, 16 hexadecimal digits", checkReservationKey);
        arguments.flag("--registry", inRegistry_, "Set it in the registry alone");
        arguments.flag("--driver", inDriver_, "Set it in the driver alone");
        addChangeOptions(arguments, changeOptions_, true);
    }

    void execute(const Context& context, Report& report) override {
        // Neither is both.
        const bool inRegistry = inRegistry_ || !inDriver_;
        const bool inDriver = inDriver_ || !inRegistry_;
        Key key = parseReservationKey(key_).value_or(Key{});
        Session session(context);
        Change change(session, context, report,
                      fmt::format("set the reservation key {} in {}", formatReservationKey(key),
                                  placesText(inRegistry, inDriver)));
        if (change.isWanted(changeOptions_, true)) {
            char* bytes = reinterpret_cast<char*>(key.data());
            if (inRegistry) {
                change.make("Reg_Set_PR", kRegistryCheck, [&] { return Reg_Set_PR(bytes); });
            }
            if (inDriver) {
                change.make("KORVADSMSetPRKey", kDriverCheck,
                            [&] { return KORVADSMSetPRKey(bytes); });
            }
        }
        const std::vector<PlacedKey> keys = readKeys(session, readLuns(session, report), report);
        report.sections.push_back(sectionOf("keys", kTable, Fields<PlacedKey>(kKeyFields), keys));
        if (!changeOptions_.isDryRun) checkKeys(keys, key, inRegistry, inDriver, change, report);
    }

  private:
    static const char* placesText(bool inRegistry, bool inDriver) {
        if (!inDriver) return "the registry";
        return inRegistry ? "the registry and the driver" : "the driver";
    }

    static void checkKeys(const std::vector<PlacedKey>& keys, const Key& wanted, bool inRegistry,
                          bool inDriver, Change& change, Report& report) {
        if (inRegistry && keys.front().key != wanted) {
            change.reportNoEffect("the registry holds another key", kRegistryCheck);
        }
        if (!inDriver) return;
        for (std::size_t i = 1; i < keys.size(); ++i) {
            if (!keys[i].key || *keys[i].key == wanted) continue;
            report.add(Severity::kWarning,
                       fmt::format("the LUN {} still bears another key",
                                   keys[i].serialNumber.value_or("-")),
                       DSM_SUCCESS, kDriverCheck);
        }
    }

    std::string key_;
    bool inRegistry_ = false;
    bool inDriver_ = false;
    ChangeOptions changeOptions_;
};

}  // namespace

void addReservationCommands(Commands& commands) {
    commands.push_back(std::make_unique<ReservationShowCommand>());
    commands.push_back(std::make_unique<ReservationSetCommand>());
}

}  // namespace quista::cli

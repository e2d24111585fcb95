#include "cli/inventory.h"

#include <windows.h>

#include <objbase.h>
#include <wbemcli.h>

#include <algorithm>
#include <fmt/format.h>
#include <list>
#include <map>
#include <memory>

#include "cli/failure.h"
#include "cli/format.h"
#include "cli/hints.h"
#include "cli/text.h"
#include "frame/task_memory.h"
#include "quista/frame.h"
#include "quista/luns.h"

namespace quista::cli {
namespace {

constexpr const char* kSerialHint =
    "The driver does not give it: check the LUN on its storage system. Commands that take a serial "
    "number cannot name it.";

// The instances of an enumeration, whose references the caller owns.
class Instances {
  public:
    Instances() = default;
    ~Instances() {
        for (IWbemClassObject* instance : list_) instance->Release();
    }
    Instances(const Instances&) = delete;
    Instances& operator=(const Instances&) = delete;

    std::list<IWbemClassObject*>& list() { return list_; }

  private:
    std::list<IWbemClassObject*> list_;
};

Lun readLun(Session& session, IWbemClassObject* instance) {
    _KORVADSM_DISKINFO* block = nullptr;
    const unsigned long status =
        session.call("ParseDiskInfoKORVA", [&] { return ParseDiskInfoKORVA(instance, &block); });
    const UniqueTaskMemory<_KORVADSM_DISKINFO> owner(block);
    if (block != nullptr) return lunFrom(*block, status);
    Lun lun;
    lun.serialText = "-";
    lun.status = status;
    return lun;
}

// A session that is not open makes every call fail; its own status says why.
[[noreturn]] void failListing(const Session& session, unsigned long callStatus) {
    const unsigned long status = session.status() != DSM_SUCCESS ? session.status() : callStatus;
    throw Failure(ExitCode::kFailed, status, "cannot list the LUNs", hintFor(status));
}

// An empty list has three meanings: no LUNs, no connection or no DSM.
void checkEmptyList(Session& session) {
    if (session.status() != DSM_SUCCESS) failListing(session, DSM_SUCCESS);
    const unsigned long missing =
        session.call("DSMCheckForKORVADSMClasses", [] { return DSMCheckForKORVADSMClasses(); });
    if (missing == DSM_SUCCESS) return;
    throw Failure(ExitCode::kFailed, DSM_WMI_NOT_SUPPORTED,
                  "cannot list the LUNs: the class KORVADSM_LUNINFO is missing from root\\wmi",
                  installHint());
}

// What a person knows the LUN by.
std::string nameOf(const Lun& lun) {
    if (lun.serialNumber) return *lun.serialNumber;
    if (lun.lunPath && lun.storageSystem) {
        return fmt::format("{} on {}", *lun.lunPath, *lun.storageSystem);
    }
    return lun.instanceName ? *lun.instanceName : lun.serialText;
}

void failPartly(Report& report, std::string text, unsigned long status, const char* hint) {
    report.add(Severity::kError, std::move(text), status, hint);
    report.fail(ExitCode::kFailed, status == DSM_SUCCESS ? DSM_WMI_PARSING_ERROR : status);
}

void reportGapsOf(const Lun& lun, Report& report) {
    if (lun.status != DSM_SUCCESS) {
        failPartly(report, fmt::format("cannot read the LUN {} completely", nameOf(lun)),
                   lun.status, logHint());
    } else if (!lun.hasAllPaths()) {
        failPartly(
            report,
            fmt::format("the driver counts {} of the LUN {} but describes {}",
                        formatCount(lun.pathsReported, "path"), nameOf(lun), lun.paths.size()),
            DSM_SUCCESS, logHint());
    }
    if (!lun.serialNumber) {
        failPartly(report,
                   fmt::format("the serial number of the LUN {} cannot be read", nameOf(lun)),
                   DSM_SUCCESS, kSerialHint);
    }
}

void reportDuplicates(const std::vector<Lun>& luns, Report& report) {
    std::map<std::string, std::size_t> counts;
    for (const Lun& lun : luns) {
        if (lun.serialNumber) ++counts[*lun.serialNumber];
    }
    for (const auto& [serial, count] : counts) {
        if (count == 1) continue;
        report.add(Severity::kWarning,
                   fmt::format("{} LUNs have the serial number {}", count, serial));
    }
}

std::string nearMiss(const std::vector<Lun>& luns, const std::string& serial) {
    for (const Lun& lun : luns) {
        if (!equalIgnoringCase(lun.serialText, serial)) continue;
        return fmt::format("Letters count: there is a LUN {}.", lun.serialText);
    }
    return "quistactl luns lists the serial numbers.";
}

}  // namespace

std::vector<Lun> readLuns(Session& session, Report& report) {
    Instances instances;
    long count = 0;
    const unsigned long status = session.call("KORVADSMGetAllDiskInfoEx", [&] {
        return KORVADSMGetAllDiskInfoEx(instances.list(), count);
    });
    if (instances.list().empty()) {
        if (status != DSM_SUCCESS) failListing(session, status);
        checkEmptyList(session);
    }
    if (status != DSM_SUCCESS)
        failPartly(report, "the list of LUNs is not complete", status, logHint());
    if (session.status() != DSM_SUCCESS && !instances.list().empty()) {
        report.add(Severity::kWarning, "the session could not be opened completely",
                   session.status(), hintFor(session.status()));
    }
    std::vector<Lun> luns;
    for (IWbemClassObject* instance : instances.list()) {
        luns.push_back(readLun(session, instance));
    }
    return luns;
}

std::vector<Lun> selectLuns(const std::vector<Lun>& luns, const std::string& serial,
                            Report& report) {
    std::vector<Lun> selected;
    std::copy_if(luns.begin(), luns.end(), std::back_inserter(selected),
                 [&](const Lun& lun) { return lun.serialText == serial; });
    if (selected.empty()) {
        report.add(Severity::kError, fmt::format("no LUN {}", serial), DSM_SERIAL_NOT_FOUND,
                   nearMiss(luns, serial));
        report.fail(ExitCode::kNotFound, DSM_SERIAL_NOT_FOUND);
    }
    // A LUN that is not found may be one of those that cannot be read.
    reportGaps(selected.empty() ? luns : selected, report);
    return selected;
}

std::vector<Lun> readWantedLuns(Session& session, const std::string& serial, Report& report) {
    std::vector<Lun> luns = readLuns(session, report);
    if (!serial.empty()) return selectLuns(luns, serial, report);
    reportGaps(luns, report);
    return luns;
}

std::optional<PathOfLun> findPath(const std::vector<Lun>& luns, std::uint32_t id) {
    for (const Lun& lun : luns) {
        for (const Path& path : lun.paths) {
            if (path.id == id) return PathOfLun{&lun, &path};
        }
    }
    return std::nullopt;
}

std::optional<PathOfLun> selectPath(const std::vector<Lun>& luns, std::uint32_t id,
                                    Report& report) {
    const auto path = findPath(luns, id);
    if (path) return path;
    report.add(Severity::kError, "no path " + formatPathId(id), DSM_PATH_NOT_FOUND,
               "quistactl paths lists the identifiers.");
    report.fail(ExitCode::kNotFound, DSM_PATH_NOT_FOUND);
    // It may be a path of a LUN that cannot be read.
    reportGaps(luns, report);
    return std::nullopt;
}

void reportGaps(const std::vector<Lun>& luns, Report& report) {
    for (const Lun& lun : luns) reportGapsOf(lun, report);
    reportDuplicates(luns, report);
}

}  // namespace quista::cli

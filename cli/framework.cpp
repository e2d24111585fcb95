#include "cli/framework.h"

#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <iterator>
#include <memory>

#include "cli/chatter_guard.h"
#include "cli/hints.h"
#include "cli/text.h"
#include "frame/task_memory.h"
#include "quista/mpio.h"

namespace quista::cli {
namespace {

void fail(Report& report, const char* text, unsigned long status) {
    report.add(Severity::kError, text, status, installHint());
    report.fail(ExitCode::kFailed, status);
}

std::vector<Controller> readControllers(Session& session, Report& report) {
    _MPIO_CONTROLLER_CONFIGURATION* block = nullptr;
    const unsigned long status =
        session.call("DSMGetControllerConfig", [&] { return DSMGetControllerConfig(&block); });
    const UniqueTaskMemory<_MPIO_CONTROLLER_CONFIGURATION> owner(block);
    if (status != DSM_SUCCESS || block == nullptr) {
        fail(report, "cannot list MPIO's controllers", status);
        return {};
    }
    const std::size_t count =
        std::min<std::size_t>(block->NumberControllers, std::size(block->ControllerInfo));
    std::vector<Controller> controllers;
    for (std::size_t i = 0; i < count; ++i) {
        const _MPIO_CONTROLLER_INFO& info = block->ControllerInfo[i];
        controllers.push_back({i + 1, toUtf8(boundedText(info.AssociatedDsm)), info.ControllerState,
                               info.IdentifierType});
    }
    return controllers;
}

DriverFile fileFrom(const char* name, const _DRIVER_VERSION_ENTRY& entry) {
    DriverFile file{.name = name, .version = {}, .date = {}};
    const bool isKnown = (entry.Major | entry.Minor | entry.Build | entry.Revision) != 0;
    const std::size_t length = strnlen(entry.Date, std::size(entry.Date));
    if (isKnown || length != 0) {
        file.version =
            fmt::format("{}.{}.{}.{}", entry.Major, entry.Minor, entry.Build, entry.Revision);
    }
    if (length != 0) file.date = std::string(entry.Date, length);
    return file;
}

std::vector<DriverFile> readFiles(Session& session, Report& report) {
    _DRIVER_VERSION version{};
    const unsigned long status =
        session.call("DSMGetVersion", [&] { return DSMGetVersion(&version); });
    if (status != DSM_SUCCESS) {
        report.add(Severity::kError, "cannot read the versions of the drivers", status, logHint());
        report.fail(ExitCode::kFailed, status);
    }
    return {fileFrom("quistactl.exe", version.Program), fileFrom("korvadsm.sys", version.KorvaDsm),
            fileFrom("mpio.sys", version.Mpio),
            fileFrom("msiscdsm.sys or msdsm.sys", version.MicrosoftDsm)};
}

}  // namespace

Framework readFramework(Session& session, Report& report) {
    Framework framework;
    framework.files = readFiles(session, report);
    unsigned char flag = 0;
    const unsigned long present =
        session.call("DSMIsMPIOPresent", [&] { return DSMIsMPIOPresent(&flag); });
    framework.isMpioPresent = present == DSM_SUCCESS && flag != 0;
    if (!framework.isMpioPresent) {
        fail(report, "MPIO does not answer: it is not installed, or its classes are missing",
             session.status() != DSM_SUCCESS ? session.status() : present);
        return framework;
    }
    flag = 0;
    const unsigned long installed = session.call("KORVADSMIsInstalled", [&] {
        // It prints the controllers, which are listed below.
        const MutedChatter muted;
        return KORVADSMIsInstalled(&flag);
    });
    framework.isDsmInstalled = installed == DSM_SUCCESS && flag != 0;
    framework.isDsmLoaded = session.call("DSMIsLoaded", [] { return DSMIsLoaded(); }) != 0;
    framework.controllers = readControllers(session, report);
    unsigned long disks = 0;
    const unsigned long counted =
        session.call("DSMGetNumberMpioLUNs", [&] { return DSMGetNumberMpioLUNs(&disks); });
    if (counted == DSM_SUCCESS) {
        framework.mpioDisks = disks;
    } else {
        fail(report, "cannot count MPIO's disks", counted);
    }
    return framework;
}

}  // namespace quista::cli

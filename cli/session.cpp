#include "cli/session.h"

#include <windows.h>

#include <objbase.h>

#include <iterator>

#include "cli/failure.h"
#include "cli/hints.h"
#include "cli/text.h"
#include "quista/frame.h"

namespace quista::cli {
namespace {

std::optional<SimulatedHost> openHost(const Context& context) {
    if (context.options.simulatedHost.empty()) return std::nullopt;
    std::optional<SimulatedHost> host(std::in_place, context.process.folder,
                                      context.options.simulatedHost);
    host->start();
    return host;
}

// The simulator's own class files stand for those of an installation.
std::optional<SimulatedRegistry> openRegistry(const Context& context,
                                              const std::optional<SimulatedHost>& host) {
    if (!host) return std::nullopt;
    return std::optional<SimulatedRegistry>(std::in_place,
                                            context.process.folder + L"\\hosts\\classes\\", *host);
}

}  // namespace

// A thread that already is in an apartment, and security that already is set, stay as they are.
ComApartment::ComApartment() {
    const HRESULT opened = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    isOwn_ = SUCCEEDED(opened);
    if (!isOwn_ && opened != RPC_E_CHANGED_MODE) {
        throw Failure(ExitCode::kFailed, DSM_COM_INIT_FAILED, "cannot set up COM",
                      hintFor(DSM_COM_INIT_FAILED));
    }
    const HRESULT secured =
        CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    if (SUCCEEDED(secured) || secured == RPC_E_TOO_LATE) return;
    if (isOwn_) CoUninitialize();
    throw Failure(ExitCode::kFailed, DSM_COM_SECURITY_FAILED, "cannot set up COM",
                  hintFor(DSM_COM_SECURITY_FAILED));
}

ComApartment::~ComApartment() {
    if (isOwn_) CoUninitialize();
}

Session::Session(const Context& context)
    : watchdog_(context.watchdog),
      programFolder_(context.process.folder),
      host_(openHost(context)),
      registry_(openRegistry(context, host_)),
      status_(call("DSMInitialize", [] { return DSMInitialize(0); })) {}

Session::~Session() {
    DSMUninitialize();
}

std::string Session::hostName() const {
    if (host_) return host_->name();
    wchar_t name[256] = {};
    DWORD size = static_cast<DWORD>(std::size(name));
    if (!GetComputerNameExW(ComputerNameDnsHostname, name, &size)) return "this host";
    return toUtf8({name, size});
}

void Session::provideAdapters() {
    if (host_ && !adapters_) adapters_.emplace(programFolder_ + L"\\standins");
}

void Session::keepChanges(Report& report) {
    if (!host_) return;
    registry_->keepChanges(*host_);
    if (!host_->isChanged()) return;
    if (!host_->isSample()) {
        host_->save();
        return;
    }
    constexpr const char* kNotKept = "changes to the sample are not kept";
    for (const Message& message : report.messages) {
        if (message.text == kNotKept) return;
    }
    report.add(Severity::kWarning, kNotKept, DSM_SUCCESS,
               "Make a host of your own with quistactl simulate new.");
}

}  // namespace quista::cli

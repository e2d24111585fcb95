#include "cli/session.h"

#include <windows.h>

#include <objbase.h>

#include "cli/failure.h"
#include "cli/hints.h"
#include "quista/frame.h"

namespace quista::cli {
namespace {

std::optional<SimulatedHost> openHost(const Context& context) {
    if (context.options.simulatedHost.empty()) return std::nullopt;
    return std::optional<SimulatedHost>(std::in_place, context.process.folder,
                                        context.options.simulatedHost);
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
      host_(openHost(context)),
      status_(call("DSMInitialize", [] { return DSMInitialize(0); })) {}

Session::~Session() {
    DSMUninitialize();
}

}  // namespace quista::cli

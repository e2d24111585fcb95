// What all COM objects of one simulator share, and the one way in which every call runs.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "simulator/com/wbem_result.h"
#include "simulator/driver/korva_driver.h"
#include "simulator/driver/prescribed_methods.h"
#include "simulator/faults/call_trace.h"
#include "simulator/faults/fault_plan.h"
#include "simulator/faults/live_ledger.h"
#include "simulator/faults/next_limit.h"
#include "simulator/repository/repository.h"

namespace quista::simulator {

/// Runs `body` so that no exception reaches the client.
template <class Body>
HRESULT guarded(Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
        return wbem(WBEM_E_OUT_OF_MEMORY);
    } catch (...) {
        return wbem(WBEM_E_FAILED);
    }
}

/// Every COM object owns a share of its host, so that clients may release after the simulator is
/// gone.
struct Host {
    Repository repository;
    LiveLedger ledger;
    FaultPlan faults;
    CallTrace trace;
    NextLimit nextLimit;
    PrescribedMethods methods{std::make_unique<KorvaDriver>()};
    bool unknownClassAtCreation = false;
    HRESULT locatorFailure = S_OK;
    HRESULT compilerFailure = S_OK;

    /// Runs one call: a planned fault takes its place, no exception leaves it, and it is recorded.
    /// `emptyOutputs` runs when the planned result is S_OK, so that the client finds outputs, empty
    /// ones. Outputs that a failure nulls too are nulled by the caller beforehand.
    template <class Body, class EmptyOutputs>
    HRESULT run(const Call& call, Body&& body, EmptyOutputs&& emptyOutputs) noexcept {
        return guarded([&] {
            const std::optional<HRESULT> fault = faults.strike(call);
            if (fault == S_OK) emptyOutputs();
            const HRESULT result = fault ? *fault : guarded(std::forward<Body>(body));
            trace.record(call, result);
            return result;
        });
    }

    template <class Body>
    HRESULT run(const Call& call, Body&& body) noexcept {
        return run(call, std::forward<Body>(body), [] {});
    }
};

}  // namespace quista::simulator

// What tests plan against the client: calls that fail and values that Get delivers.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <optional>
#include <string_view>
#include <vector>

#include "simulator/com/owned_variant.h"
#include "simulator/faults/call.h"
#include "simulator/faults/occurrences.h"
#include "simulator/simulator.h"

namespace quista::simulator {

class FaultPlan {
  public:
    void add(const Fault& fault);
    /// Keeps a copy of `value`.
    void addOverride(const ValueOverride& where, const VARIANT& value);
    void clear();

    /// Counts the call against every fault that it matches. What the call is to return, when one of
    /// them is meant for it; of several the one that was added first.
    std::optional<HRESULT> strike(const Call& call);
    /// Likewise for Get: the value to deliver, owned by the plan; null when the stored one counts.
    const VARIANT* overrideFor(std::wstring_view className, std::wstring_view property);

  private:
    struct PlannedFault {
        Fault fault;
        Occurrences occurrences;
    };
    struct PlannedOverride {
        ValueOverride where;
        OwnedVariant value;
        Occurrences occurrences;
    };

    std::vector<PlannedFault> faults_;
    std::vector<PlannedOverride> overrides_;
};

}  // namespace quista::simulator

#include "simulator/faults/fault_plan.h"

#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

/// An empty wish matches everything.
bool matches(std::wstring_view wanted, std::wstring_view actual) {
    return wanted.empty() || equalNoCase(wanted, actual);
}

bool matches(const Fault& fault, const Call& call) {
    return matches(fault.interfaceName, call.interfaceName) && matches(fault.method, call.method) &&
           matches(fault.className, call.className) && matches(fault.property, call.property);
}

}  // namespace

void FaultPlan::add(const Fault& fault) {
    faults_.push_back({fault, Occurrences(fault.occurrence, fault.count)});
}

void FaultPlan::addOverride(const ValueOverride& where, const VARIANT& value) {
    overrides_.push_back(
        {where, OwnedVariant::copyOf(value), Occurrences(where.occurrence, where.count)});
}

void FaultPlan::clear() {
    faults_.clear();
    overrides_.clear();
}

std::optional<HRESULT> FaultPlan::strike(const Call& call) {
    std::optional<HRESULT> result;
    for (PlannedFault& planned : faults_) {
        if (!matches(planned.fault, call)) continue;
        if (planned.occurrences.next() && !result) result = planned.fault.result;
    }
    return result;
}

const VARIANT* FaultPlan::overrideFor(std::wstring_view className, std::wstring_view property) {
    const VARIANT* value = nullptr;
    for (PlannedOverride& planned : overrides_) {
        if (!matches(planned.where.className, className)) continue;
        if (!matches(planned.where.property, property)) continue;
        if (planned.occurrences.next() && value == nullptr) value = &*planned.value;
    }
    return value;
}

}  // namespace quista::simulator

#include "simulator/driver/prescribed_methods.h"

#include <optional>
#include <utility>

#include "simulator/com/variant_values.h"
#include "simulator/com/wbem_result.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

HRESULT setParameter(CimInstance& parameters, const MethodResult& result) {
    if (parameters.definition().findProperty(result.outParameter) == nullptr) {
        return wbem(WBEM_E_NOT_FOUND);
    }
    if (!result.value) return wbem(WBEM_E_TYPE_MISMATCH);
    const CimInstance::SetResult isSet = parameters.set(result.outParameter, *result.value);
    return isSet == CimInstance::SetResult::done ? S_OK : wbem(WBEM_E_TYPE_MISMATCH);
}

}  // namespace

PrescribedMethods::PrescribedMethods(std::unique_ptr<DriverMethods> driver)
    : driver_(std::move(driver)) {}

void PrescribedMethods::prescribe(std::wstring_view className, std::wstring_view method,
                                  std::wstring_view outParameter, const VARIANT& value) {
    prescriptions_.push_back({std::wstring(className), std::wstring(method),
                              std::wstring(outParameter), OwnedVariant::copyOf(value)});
}

void PrescribedMethods::prescribeNoOutput(std::wstring_view className, std::wstring_view method) {
    prescriptions_.push_back({std::wstring(className), std::wstring(method), {}, {}});
}

/// What the host prescribes, and then what tests do: the latter has the last word.
std::vector<MethodResult> PrescribedMethods::resultsFor(const MethodCall& call) const {
    std::vector<MethodResult> results = hostResultsFor(call);
    const CimClassPtr signature = outSignature(call.method);
    for (const Prescription& prescription : prescriptions_) {
        if (!call.definition.isA(prescription.className)) continue;
        if (!equalNoCase(prescription.method, call.method.name)) continue;
        const CimProperty* parameter =
            signature != nullptr ? signature->findProperty(prescription.outParameter) : nullptr;
        MethodResult& result = results.emplace_back(MethodResult{prescription.outParameter, {}});
        if (parameter != nullptr) result.value = fromVariant(*prescription.value, parameter->type);
    }
    return results;
}

MethodOutcome PrescribedMethods::execute(const MethodCall& call) {
    const std::vector<MethodResult> results = resultsFor(call);
    // A driver that refuses changes nothing.
    MethodOutcome outcome =
        holdRefusal(results) ? AgreeableDriver().execute(call) : driver_->execute(call);
    for (const MethodResult& result : results) {
        if (FAILED(outcome.result)) break;
        if (result.outParameter.empty()) {
            outcome.outParameters.reset();
        } else if (outcome.outParameters) {
            outcome.result = setParameter(*outcome.outParameters, result);
        }
    }
    return outcome;
}

}  // namespace quista::simulator

#include "simulator/driver/prescribed_methods.h"

#include <optional>
#include <utility>

#include "simulator/com/variant_values.h"
#include "simulator/com/wbem_result.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

HRESULT setParameter(CimInstance& parameters, std::wstring_view name, const VARIANT& value) {
    const CimProperty* parameter = parameters.definition().findProperty(name);
    if (parameter == nullptr) return wbem(WBEM_E_NOT_FOUND);
    std::optional<CimValue> converted = fromVariant(value, parameter->type);
    if (!converted) return wbem(WBEM_E_TYPE_MISMATCH);
    const bool isSet = parameters.set(name, std::move(*converted)) == CimInstance::SetResult::done;
    return isSet ? S_OK : wbem(WBEM_E_TYPE_MISMATCH);
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

MethodOutcome PrescribedMethods::execute(const MethodCall& call) {
    MethodOutcome outcome = driver_->execute(call);
    for (const Prescription& prescription : prescriptions_) {
        if (FAILED(outcome.result)) break;
        if (!call.definition.isA(prescription.className)) continue;
        if (!equalNoCase(prescription.method, call.method.name)) continue;
        if (prescription.outParameter.empty()) {
            outcome.outParameters.reset();
        } else if (outcome.outParameters) {
            outcome.result = setParameter(*outcome.outParameters, prescription.outParameter,
                                          *prescription.value);
        }
    }
    return outcome;
}

}  // namespace quista::simulator

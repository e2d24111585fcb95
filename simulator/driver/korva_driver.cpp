#include "simulator/driver/korva_driver.h"

#include <string_view>

#include "simulator/driver/class_names.h"
#include "simulator/driver/counters.h"
#include "simulator/driver/driver_status.h"
#include "simulator/driver/instance_values.h"
#include "simulator/driver/path_methods.h"
#include "simulator/driver/policy_methods.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

MethodOutcome answering(MethodOutcome outcome, std::wstring_view outParameter,
                        DriverStatus status) {
    if (outcome.outParameters) {
        setNumber(*outcome.outParameters, outParameter, static_cast<std::uint64_t>(status));
    }
    return outcome;
}

bool isMethod(const MethodCall& call, std::wstring_view className, std::wstring_view method) {
    return call.definition.isA(className) && equalNoCase(call.method.name, method);
}

}  // namespace

MethodOutcome KorvaDriver::execute(const MethodCall& call) {
    const MethodOutcome agreed = others_.execute(call);
    if (call.definition.isA(kLunClass)) {
        return answering(agreed, L"ReturnCode", carryOutPathMethod(call));
    }
    if (isMethod(call, kPolicyOperationsClass, L"DsmSetLoadBalancePolicy")) {
        return answering(agreed, L"Status", setLoadBalancePolicy(call));
    }
    if (isMethod(call, kRegistrationMethodsClass, L"SetDsmCounters")) {
        return {setDsmCounters(call), agreed.outParameters};
    }
    return agreed;
}

}  // namespace quista::simulator

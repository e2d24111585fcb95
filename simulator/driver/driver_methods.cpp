#include "simulator/driver/driver_methods.h"

#include "simulator/repository/cim_value.h"

namespace quista::simulator {
namespace {

CimValue zeroOf(const CimDeclaredType& type) {
    if (type.isArray) return {};
    if (isSignedInteger(type.base)) return CimValue::ofSigned(0);
    if (isUnsignedInteger(type.base)) return CimValue::ofUnsigned(0);
    if (isReal(type.base)) return CimValue::ofReal(0);
    if (type.base == CimType::boolean) return CimValue::ofBoolean(false);
    if (type.base == CimType::string) return CimValue::ofText({});
    return {};
}

}  // namespace

MethodOutcome AgreeableDriver::execute(const MethodCall& call) {
    const CimClassPtr signature = outSignature(call.method);
    if (signature == nullptr) return {};
    CimInstance outParameters(signature);
    for (const CimProperty& parameter : signature->properties) {
        outParameters.set(parameter.name, zeroOf(parameter.type));
    }
    return {S_OK, outParameters};
}

}  // namespace quista::simulator

#include "simulator/com/method_execution.h"

#include <algorithm>
#include <utility>

#include "simulator/com/class_object.h"
#include "simulator/com/embedded_objects.h"

namespace quista::simulator {
namespace {

/// The client's in-parameters must be an object of the method's in-signature; a method without
/// inputs takes none.
bool parametersFit(const CimMethod& method, const CimInstancePtr& parameters) {
    const CimClassPtr signature = inSignature(method);
    if (signature == nullptr) return parameters == nullptr;
    if (parameters == nullptr) return false;
    const std::vector<CimProperty>& given = parameters->definition().properties;
    return std::ranges::all_of(given, [&](const CimProperty& parameter) {
        const CimProperty* wanted = signature->findProperty(parameter.name);
        return wanted != nullptr && wanted->type == parameter.type;
    });
}

}  // namespace

HRESULT executeMethod(const std::shared_ptr<Host>& host, const std::wstring& nameSpace,
                      const ObjectPath& path, std::wstring_view methodName, IWbemClassObject* in,
                      IWbemClassObject** out) {
    CimClassPtr definition = host->repository.findClass(nameSpace, path.className);
    if (definition == nullptr) return wbem(WBEM_E_NOT_FOUND);
    const CimInstancePtr instance = host->repository.findInstance(nameSpace, path);
    if (!path.isClass() && instance == nullptr) return wbem(WBEM_E_NOT_FOUND);
    if (instance != nullptr) definition = instance->sharedDefinition();
    const CimMethod* method = definition->findMethod(methodName);
    if (method == nullptr) return wbem(WBEM_E_INVALID_METHOD);
    // Only a static method does without an instance.
    if (path.isClass() && !method->qualifiers.isSet(L"static")) {
        return wbem(WBEM_E_INVALID_OBJECT_PATH);
    }

    const CimInstancePtr parameters = in != nullptr ? instanceBehind(in) : nullptr;
    if (in != nullptr && parameters == nullptr) return wbem(WBEM_E_INVALID_METHOD_PARAMETERS);
    if (!parametersFit(*method, parameters)) return wbem(WBEM_E_INVALID_METHOD_PARAMETERS);

    MethodOutcome outcome = host->methods.execute(
        {host->repository, nameSpace, *definition, *method, instance, parameters});
    if (SUCCEEDED(outcome.result) && out != nullptr && outcome.outParameters) {
        auto values = std::make_shared<const CimInstance>(std::move(*outcome.outParameters));
        ObjectState state = stateOfInstance(std::move(values), {});
        state.isStored = false;
        deliver(makeClassObject(host, std::move(state)), out);
    }
    return outcome.result;
}

}  // namespace quista::simulator

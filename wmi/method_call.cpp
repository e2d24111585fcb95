#include "wmi/method_call.h"

#include <wbemcli.h>

#include <string>

#include "frame/bstr.h"
#include "frame/console.h"
#include "frame/error_log.h"
#include "frame/session.h"
#include "quista/frame.h"
#include "quista/status.h"
#include "wmi/com_ref.h"
#include "wmi/instance_names.h"
#include "wmi/property.h"
#include "wmi/query.h"

namespace quista {

namespace {

/// One call with all that it holds on to.
struct MethodCall {
    explicit MethodCall(const wchar_t* classText, const wchar_t* methodText)
        : className(classText), methodName(methodText) {}

    UniqueBstr className;
    UniqueBstr methodName;
    UniqueBstr path;
    ComRef<IEnumWbemClassObject> instances;
    ComRef<IWbemClassObject> classObject;
    ComRef<IWbemClassObject> inSignature;
    ComRef<IWbemClassObject> input;
    ComRef<IWbemClassObject> output;

    HRESULT execute() {
        if (gServices == nullptr) return E_POINTER;
        return gServices->ExecMethod(path.get(), methodName.get(), 0, nullptr, input.get(),
                                     output.receive(), nullptr);
    }

    /// Kept: a call that breaks off releases nothing of what it had obtained.
    DWORD breakOff() {
        className.keepOnPurpose();
        methodName.keepOnPurpose();
        path.keepOnPurpose();
        instances.keepOnPurpose();
        classObject.keepOnPurpose();
        inSignature.keepOnPurpose();
        input.keepOnPurpose();
        output.keepOnPurpose();
        return DSM_WMI_FAILURE;
    }
};

/// Walks the instances until one bears the name, and leaves its path in the call.
bool findInstance(MethodCall& call, const wchar_t* className,
                  const std::wstring& quotedInstanceName) {
    for (;;) {
        ComRef<IWbemClassObject> instance;
        // Kept: the end of the enumeration and failures are no way out; the call is made again.
        if (nextInstance(call.instances.get(), instance) != S_OK) continue;

        UniqueVariant value;
        if (getOrLog(instance.get(), L"InstanceName", value, L"CallMethodForInstance::Get") !=
            S_OK) {
            return false;
        }
        const std::wstring name = escapeBackslashes(stringOf(value.get()));
        // Kept: the path of an earlier instance is not freed.
        call.path.keepOnPurpose();
        call.path = UniqueBstr(instancePath(className, name).c_str());
        if (quoted(name) == quotedInstanceName) {
            call.instances.reset();
            return true;
        }
        // Kept: an instance that does not match is not released.
        instance.keepOnPurpose();
    }
}

bool getSignature(MethodCall& call) {
    HRESULT result = gServices != nullptr
                         ? gServices->GetObject(call.className.get(), 0, nullptr,
                                                call.classObject.receive(), nullptr)
                         : E_POINTER;
    if (logFailure(result, L"CallMethodForInstance::GetObject") != S_OK) return false;
    result = call.classObject ? call.classObject->GetMethod(call.methodName.get(), 0,
                                                            call.inSignature.receive(), nullptr)
                              : E_POINTER;
    return logFailure(result, L"CallMethodForInstance::GetMethod") == S_OK;
}

bool fillInput(MethodCall& call, VARIANT* policy) {
    HRESULT result = call.inSignature->SpawnInstance(0, call.input.receive());
    if (result == S_OK && !call.input) result = E_POINTER;
    if (logFailure(result, L"CallMethodForInstance:IWbemClassObject::SpawnInstance") != S_OK) {
        return false;
    }
    result = call.input->Put(L"LoadBalancePolicy", 0, policy, 0);
    // Kept: the put is logged under the name of the execution.
    return logFailure(result, L"CallMethodForInstance:IWbemServices::ExecMethod") == S_OK;
}

/// The places under which the two kinds of method report their outputs.
struct OutputPlaces {
    const wchar_t* missing;
    const wchar_t* text;
};

bool getOutputText(MethodCall& call, const OutputPlaces& places, UniqueBstr& text) {
    if (!call.output) {
        ReportError(places.missing, 0);
        return false;
    }
    return logFailure(call.output->GetObjectText(0, text.receive()), places.text) == S_OK;
}

DWORD callWithInput(MethodCall& call, VARIANT* policy) {
    constexpr OutputPlaces kPlaces = {
        L"CallMethodForInstance:IWbemObject::gServices->ExecMethod",
        L"CallMethodForInstance:IWbemObject::GetObjectText",
    };
    if (!fillInput(call, policy)) return call.breakOff();
    // Kept: an execution that fails leaves no line and reports success.
    if (call.execute() != S_OK) return DSM_SUCCESS;
    UniqueBstr text;
    if (!getOutputText(call, kPlaces, text)) return call.breakOff();
    UniqueVariant status;
    if (getProperty(call.output.get(), L"Status", status) != S_OK) return DSM_WMI_FAILURE;
    return status.rawLong();
}

DWORD callWithoutInput(MethodCall& call) {
    constexpr OutputPlaces kPlaces = {
        L"CallMethodForInstance::GetObjectText",
        L"CallMethodForInstance::GetObjectText",
    };
    if (logFailure(call.execute(), L"CallMethodForInstance::ExecMethod") != S_OK) {
        return call.breakOff();
    }
    UniqueBstr text;
    if (!getOutputText(call, kPlaces, text)) return call.breakOff();
    UniqueVariant returnCode;
    if (getOrLog(call.output.get(), L"ReturnCode", returnCode,
                 L"CallMethodForInstance::Get(ReturnCode)") != S_OK) {
        text.keepOnPurpose();
        return call.breakOff();
    }
    traceFormatted(L"The %ls method returned:\n%ls\n", call.methodName.get(), text.get());
    return returnCode.rawLong();
}

}  // namespace

DWORD CallMethodForInstance(const wchar_t* className, const wchar_t* methodName,
                            BSTR* /*parameterNames*/, VARIANT** parameterValues,
                            int /*parameterCount*/, const wchar_t* quotedInstanceName) {
    MethodCall call(className, methodName);
    if (enumerateClass(className, call.instances) != S_OK) return DSM_WMI_FAILURE;
    if (!findInstance(call, className, quotedInstanceName)) return call.breakOff();
    if (!getSignature(call)) return call.breakOff();
    return call.inSignature ? callWithInput(call, parameterValues[0]) : callWithoutInput(call);
}

}  // namespace quista

#include "control/itl_method.h"

#include <wbemcli.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "control/path_search.h"
#include "frame/bstr.h"
#include "frame/console.h"
#include "frame/error_log.h"
#include "frame/session.h"
#include "quista/status.h"
#include "wmi/com_ref.h"
#include "wmi/property.h"

namespace quista {

namespace {

constexpr std::uint8_t kWeightedPaths = 5;
// From here on a return code is an NTSTATUS of informational, warning or error severity.
constexpr std::uint32_t kFirstRefusal = 0x40000000;

struct Arguments {
    const BSTR* names;
    const unsigned long long* values;
    DWORD count;
};

/// One call of a method on one instance.
struct ItlCall {
    UniqueBstr className;
    UniqueBstr methodName;
    UniqueBstr objectPath;
    DWORD status;
    ComRef<IWbemClassObject> classObject;
    ComRef<IWbemClassObject> inSignature;
    ComRef<IWbemClassObject> input;
    ComRef<IWbemClassObject> output;

    HRESULT execute() {
        return gServices->ExecMethod(objectPath.get(), methodName.get(), 0, nullptr, input.get(),
                                     output.receive(), nullptr);
    }
};

/// A path's state does not matter under the weighted-paths policy, so it cannot be changed.
bool isRefusedByPolicy(std::uint32_t policy, std::wstring_view method) {
    return static_cast<std::uint8_t>(policy) == kWeightedPaths &&
           (method == L"SetActive" || method == L"SetPassive");
}

bool getSignature(ItlCall& call) {
    HRESULT result =
        gServices->GetObject(call.className.get(), 0, nullptr, call.classObject.receive(), nullptr);
    if (result == S_OK && !call.classObject) result = E_POINTER;
    if (logFailure(result, L"CallMethodforITL::GetObject") != S_OK) return false;
    result =
        call.classObject->GetMethod(call.methodName.get(), 0, call.inSignature.receive(), nullptr);
    return logFailure(result, L"CallMethodforITL::GetMethod") == S_OK;
}

/// Reads ReturnCode from the output, whose text is fetched and not used. A failure leaves its
/// status in the call.
bool readReturnCode(ItlCall& call, std::uint32_t& returnCode) {
    UniqueBstr text;
    if (logFailure(call.output->GetObjectText(0, text.receive()),
                   L"CallMethodforITL::GetObjectText") != S_OK) {
        return false;
    }
    UniqueVariant value;
    if (getOrLog(call.output.get(), L"ReturnCode", value, L"CallMethodforITL::Get(ReturnCode)") !=
        S_OK) {
        call.status = DSM_WMI_FAILURE;
        return false;
    }
    returnCode = value.rawLong();
    return true;
}

void callWithoutInput(ItlCall& call) {
    if (logFailure(call.execute(), L"CallMethodforITL::ExecMethod") != S_OK) return;
    if (!call.output) {
        call.status = DSM_SUCCESS;
        return;
    }
    // Kept: such a method's return code is handed on as it is.
    std::uint32_t returnCode = 0;
    if (readReturnCode(call, returnCode)) call.status = returnCode;
}

/// Gives an argument its type by its name. Kept: the CIM type that a "PathId" sets stays for the
/// arguments after it.
void typeArgument(std::wstring_view name, unsigned long long value, VARIANT& variant,
                  CIMTYPE& type) {
    if (name == L"PathId") {
        variant.vt = VT_BSTR;
        variant.bstrVal = SysAllocString(formatText(L"%I64u", value).c_str());
        type = CIM_UINT64;
    } else if (name == L"DsmID" || name == L"Weight") {
        variant.vt = VT_I4;
        variant.lVal = static_cast<LONG>(value);
    } else {
        variant.vt = VT_BOOL;
        variant.boolVal = static_cast<VARIANT_BOOL>(value);
    }
}

/// Puts the arguments into the input object.
/// @return the result of the last put; an argument whose name cannot be copied is no failed put
HRESULT fillInput(ItlCall& call, const Arguments& arguments) {
    CIMTYPE type = 0;
    for (DWORD i = 0; i < arguments.count; ++i) {
        const UniqueBstr name(arguments.names[i]);
        if (!name) {
            call.status = DSM_WMI_FAILURE;
            return S_OK;
        }
        UniqueVariant value;
        typeArgument(name.get(), arguments.values[i], value.get(), type);
        const HRESULT result = call.input->Put(name.get(), 0, &value.get(), type);
        if (result != S_OK) {
            traceFormatted(L"Argument[%d]: \"%ls\" = %I64u failed. Error: 0x%x\n", i, name.get(),
                           arguments.values[i], result);
            logFailure(result, L"CallMethodforITL::Put");
            call.status = DSM_WMI_FAILURE;
            return result;
        }
    }
    return S_OK;
}

void callWithInput(ItlCall& call, const Arguments& arguments) {
    HRESULT result = call.inSignature->SpawnInstance(0, call.input.receive());
    if (result == S_OK && !call.input) result = E_POINTER;
    if (logFailure(result, L"CallMethodforITL::SpawnInstance") != S_OK) return;

    // Kept: a put that fails leaves this second line.
    if (logFailure(fillInput(call, arguments), L"CallMethodforITL::ExecMethod") != S_OK) return;
    // Kept: an execution that fails leaves no line.
    if (call.execute() != S_OK) return;
    if (!call.output) {
        call.status = DSM_SUCCESS;
        return;
    }
    std::uint32_t returnCode = 0;
    if (readReturnCode(call, returnCode)) {
        call.status = returnCode >= kFirstRefusal ? DSM_ERROR : DSM_SUCCESS;
    }
}

}  // namespace

DWORD CallMethodforITL(const wchar_t* className, const wchar_t* methodName,
                       const BSTR* argumentNames, const unsigned long long* argumentValues,
                       DWORD argumentCount) {
    PathOwner owner = findPathOwner(className, argumentValues[0]);
    if (!owner.found) return owner.status;
    if (isRefusedByPolicy(owner.policy, methodName)) return DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE;

    ItlCall call{UniqueBstr(className),
                 UniqueBstr(methodName),
                 std::move(owner.objectPath),
                 owner.status,
                 {},
                 {},
                 {},
                 {}};
    if (!getSignature(call)) return call.status;
    if (call.inSignature) {
        callWithInput(call, {argumentNames, argumentValues, argumentCount});
    } else {
        callWithoutInput(call);
    }
    return call.status;
}

}  // namespace quista

// Calling a WMI method of one instance that is found by its name.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace quista {

/// Finds the instance of a class whose quoted escaped name is `quotedInstanceName` and calls one of
/// its methods. The search never gives up: without a match the call does not return.
/// The names and their count are not looked at: the input is always "LoadBalancePolicy", taken from
/// the first value, and the result is always "Status", or "ReturnCode" for a method without inputs.
/// @return the driver's own result; DSM_WMI_FAILURE when a WMI call failed, but 0 when the
///         execution of a method with inputs failed
DWORD CallMethodForInstance(const wchar_t* className, const wchar_t* methodName,
                            BSTR* parameterNames, VARIANT** parameterValues, int parameterCount,
                            const wchar_t* quotedInstanceName);

}  // namespace quista

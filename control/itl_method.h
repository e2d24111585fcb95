// Calling a driver method on the LUN that owns a path.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace quista {

/// Finds the LUN whose paths hold the identifier in the first value and calls a method of its
/// instance. The arguments are typed by their names: "PathId" as 64-bit decimal text, "DsmID" and
/// "Weight" as 32-bit integers, any other as a boolean.
/// @return 0; DSM_ERROR; DSM_PATH_NOT_FOUND; DSM_WMI_FAILURE; DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE;
///         for a method that takes no inputs its ReturnCode
DWORD CallMethodforITL(const wchar_t* className, const wchar_t* methodName,
                       const BSTR* argumentNames, const unsigned long long* argumentValues,
                       DWORD argumentCount);

}  // namespace quista

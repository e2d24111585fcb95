// Results of WMI calls that the library tells apart, as the signed type that the calls return.
#pragma once

#include <windows.h>

#include <wbemcli.h>

namespace quista {

inline constexpr HRESULT kEndOfEnumeration = static_cast<HRESULT>(WBEM_S_FALSE);
inline constexpr HRESULT kTimedOut = static_cast<HRESULT>(WBEM_S_TIMEDOUT);
inline constexpr HRESULT kNotFound = static_cast<HRESULT>(WBEM_E_NOT_FOUND);
inline constexpr HRESULT kInvalidClass = static_cast<HRESULT>(WBEM_E_INVALID_CLASS);

}  // namespace quista

// One call of a client as faults, overrides and the trace see it.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string_view>

namespace quista::simulator {

/// The texts are only looked at while the call runs. Interface and method are literals.
struct Call {
    const wchar_t* interfaceName;
    const wchar_t* method;
    std::wstring_view className{};  ///< of the object, enumeration, query or path; or the namespace
    std::wstring_view property{};   ///< property, or WMI method of GetMethod and ExecMethod
    std::wstring_view detail{};     ///< query text, namespace or file; empty: the property
    std::wstring_view path{};       ///< object path
    VARTYPE valueType = VT_EMPTY;   ///< of the value that Put is given
    CIMTYPE cimType = 0;            ///< that Put is given
};

}  // namespace quista::simulator

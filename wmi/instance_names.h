// Instance names as object paths carry them.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>

namespace quista {

/// A name with every backslash doubled. No other character is escaped, the double quote included.
std::wstring escapeBackslashes(const std::wstring& name);

/// A text between double quotes.
std::wstring quoted(const std::wstring& text);

/// The object path of a class's instance, given its escaped name.
std::wstring instancePath(const std::wstring& className, const std::wstring& escapedName);

/// Gives the escaped InstanceName of an object.
/// @return false, with `name` untouched, when it cannot be read
bool GetEscapedInstanceName(IWbemClassObject** object, std::wstring& name);

}  // namespace quista

// Enumerating instances: of a class, or of a query's result, one at a time.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>

#include "wmi/com_ref.h"

namespace quista {

/// Runs a WQL query on a connection, which may be null.
HRESULT execQuery(IWbemServices* services, IEnumWbemClassObject** enumerator,
                  const std::wstring& query);

/// Runs a WQL query on root\wmi.
HRESULT DsmExecQuery(IEnumWbemClassObject** enumerator, const std::wstring& query);

/// Starts the enumeration of a class's instances on root\wmi. The enumerator may be null after a
/// success.
HRESULT createInstanceEnum(const wchar_t* className, ComRef<IEnumWbemClassObject>& enumerator);

/// As createInstanceEnum; a success without an enumerator counts as a failed call (E_POINTER).
HRESULT enumerateClass(const wchar_t* className, ComRef<IEnumWbemClassObject>& enumerator);

/// Takes the next instance, however long that lasts. The end of the enumeration is WBEM_S_FALSE.
HRESULT nextInstance(IEnumWbemClassObject* enumerator, ComRef<IWbemClassObject>& instance);

/// Takes the next instance and logs any result but success under `place`: the normal end of an
/// enumeration leaves a line like a failure.
HRESULT nextOrLog(IEnumWbemClassObject* enumerator, ComRef<IWbemClassObject>& instance,
                  const wchar_t* place);

}  // namespace quista

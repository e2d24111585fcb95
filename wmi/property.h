// Reading one property of a WMI object.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>

#include "wmi/com_ref.h"
#include "wmi/variant.h"

namespace quista {

/// Reads a property, and its CIM type when that is asked for. A null object counts as a failed call
/// (E_POINTER).
HRESULT getProperty(IWbemClassObject* object, const wchar_t* name, UniqueVariant& value,
                    CIMTYPE* type = nullptr);

/// Reads a property and logs a failure under `place`.
HRESULT getOrLog(IWbemClassObject* object, const wchar_t* name, UniqueVariant& value,
                 const wchar_t* place, CIMTYPE* type = nullptr);

/// The embedded object that a value holds. A null object and any other type count as a failed call
/// (E_POINTER).
HRESULT toEmbeddedObject(const VARIANT& value, ComRef<IWbemClassObject>& object);

/// Reads a property that holds an embedded object and logs a failure under `place`.
HRESULT getObjectOrLog(IWbemClassObject* object, const wchar_t* name,
                       ComRef<IWbemClassObject>& embedded, const wchar_t* place);

/// Writes a 32-bit value under its own type.
HRESULT putLong(IWbemClassObject* object, const wchar_t* name, unsigned long number);

/// The text that a value holds as a string; empty for any other type.
std::wstring stringOf(const VARIANT& value);

}  // namespace quista

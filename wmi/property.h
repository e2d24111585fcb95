// Reading one property of a WMI object.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>

#include "wmi/com_ref.h"
#include "wmi/variant.h"

namespace quista {

/// Reads a property. A null object counts as a failed call (E_POINTER).
HRESULT getProperty(IWbemClassObject* object, const wchar_t* name, UniqueVariant& value);

/// Reads a property and logs a failure under `place`.
HRESULT getOrLog(IWbemClassObject* object, const wchar_t* name, UniqueVariant& value,
                 const wchar_t* place);

/// The embedded object that a value holds. A null object and any other type count as a failed call
/// (E_POINTER).
HRESULT toEmbeddedObject(const VARIANT& value, ComRef<IWbemClassObject>& object);

/// Reads a property that holds an embedded object and logs a failure under `place`.
HRESULT getObjectOrLog(IWbemClassObject* object, const wchar_t* name,
                       ComRef<IWbemClassObject>& embedded, const wchar_t* place);

/// The text that a value holds as a string; empty for any other type.
std::wstring stringOf(const VARIANT& value);

}  // namespace quista

// A property that MPIO fills with an array of objects, and where a single object is taken too.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include "wmi/com_ref.h"
#include "wmi/property.h"
#include "wmi/variant.h"

namespace quista {

struct ObjectOrArray {
    UniqueVariant value;
    ComRef<IWbemClassObject> single;  ///< for a value of type VT_UNKNOWN

    /// Reads the property. A single value without a WMI object behind it counts as a failed read
    /// (E_POINTER).
    HRESULT read(IWbemClassObject* instance, const wchar_t* property) {
        const HRESULT result = getProperty(instance, property, value);
        if (result != S_OK || value.type() != VT_UNKNOWN) return result;
        return toEmbeddedObject(value.get(), single);
    }
};

}  // namespace quista

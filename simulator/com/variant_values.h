// CIM values as VARIANTs: what Get delivers, and what Put accepts.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <ole2.h>
#include <optional>

#include "simulator/com/owned_variant.h"
#include "simulator/repository/cim_value.h"

namespace quista::simulator {

struct Host;

/// Writes the value as WMI delivers its type; `target` is overwritten, not cleared. Embedded
/// objects become objects of their own, owned by the VARIANT.
void toVariant(const std::shared_ptr<Host>& host, const CimDeclaredType& type,
               const CimValue& value, VARIANT& target);

/// The value as the type holds it; nothing when WMI would refuse it.
std::optional<CimValue> fromVariant(const VARIANT& source, const CimDeclaredType& type);

/// The elements of a one-dimensional array as VARIANTs of their own are handed to `visit`, which
/// returns false to stop. False when it stopped, or when the array cannot be read.
template <class Visit>
bool visitElements(const VARIANT& source, Visit&& visit) {
    SAFEARRAY* array = source.parray;
    LONG lower = 0;
    LONG upper = -1;
    if (array == nullptr || SafeArrayGetDim(array) != 1) return false;
    const bool holdsVariants = (source.vt & VT_TYPEMASK) == VT_VARIANT;
    const std::size_t room = holdsVariants ? sizeof(VARIANT) : sizeof(LONGLONG);
    if (SafeArrayGetElemsize(array) > room) return false;
    if (FAILED(SafeArrayGetLBound(array, 1, &lower))) return false;
    if (FAILED(SafeArrayGetUBound(array, 1, &upper))) return false;
    for (LONG index = lower; index <= upper; ++index) {
        OwnedVariant element;
        void* content = holdsVariants ? static_cast<void*>(element.get()) : &element->bVal;
        if (FAILED(SafeArrayGetElement(array, &index, content))) return false;
        if (!holdsVariants) element->vt = source.vt & VT_TYPEMASK;
        if (!visit(*element)) return false;
    }
    return true;
}

}  // namespace quista::simulator

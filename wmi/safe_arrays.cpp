#include "wmi/safe_arrays.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "wmi/com_ref.h"

namespace quista {

namespace {

constexpr VARTYPE kObjectArray = VT_ARRAY | VT_UNKNOWN;

bool isPlainArray(const VARIANT& value) {
    return (value.vt & VT_ARRAY) != 0 && (value.vt & VT_BYREF) == 0 && value.parray != nullptr &&
           SafeArrayGetDim(value.parray) == 1;
}

bool holdsPointers(const VARIANT& value) {
    const int element = value.vt & VT_TYPEMASK;
    return element == VT_BSTR || element == VT_UNKNOWN || element == VT_DISPATCH;
}

bool fitsSlot(const VARIANT& value) {
    return SafeArrayGetElemsize(value.parray) <= sizeof(void*);
}

bool isByteArray(const VARIANT& value) {
    return isPlainArray(value) && SafeArrayGetElemsize(value.parray) == 1;
}

/// Turns the element's reference into one to its WMI interface; null when it has none.
void* toObject(void* element) {
    const ComRef<IUnknown> unknown(static_cast<IUnknown*>(element));
    void* object = nullptr;
    if (!unknown || unknown->QueryInterface(IID_IWbemClassObject, &object) != S_OK) return nullptr;
    return object;
}

}  // namespace

ArrayBounds boundsOf(const VARIANT& value) {
    ArrayBounds bounds;
    if (!isPlainArray(value)) return bounds;
    LONG lower = 0;
    LONG upper = -1;
    if (SafeArrayGetLBound(value.parray, 1, &lower) == S_OK &&
        SafeArrayGetUBound(value.parray, 1, &upper) == S_OK) {
        bounds = {lower, upper};
    }
    return bounds;
}

LONG SafeArrayToElements(const VARIANT& value, void** slots, LONG capacity) {
    const ArrayBounds bounds = boundsOf(value);
    if (bounds.count() == 0 || !fitsSlot(value)) return 0;
    const LONG count = std::min(bounds.count(), capacity);
    for (LONG i = 0; i < count; ++i) {
        LONG index = bounds.lower + i;
        if (SafeArrayGetElement(value.parray, &index, &slots[i]) != S_OK) return i;
    }
    return count;
}

LONG ElementsToSafeArray(const VARIANT& value, void** slots, LONG capacity) {
    const ArrayBounds bounds = boundsOf(value);
    if (bounds.count() == 0 || !fitsSlot(value)) return 0;
    const bool pointers = holdsPointers(value);
    const LONG count = std::min(bounds.count(), capacity);
    for (LONG i = 0; i < count; ++i) {
        LONG index = bounds.lower + i;
        void* element = pointers ? slots[i] : static_cast<void*>(&slots[i]);
        if (SafeArrayPutElement(value.parray, &index, element) != S_OK) return 0;
    }
    return count;
}

LONG SafeArrayToBytes(const VARIANT& value, unsigned char* bytes, LONG capacity) {
    const ArrayBounds bounds = boundsOf(value);
    const LONG count = bounds.count();
    if (count > capacity || !isByteArray(value)) return 0;
    for (LONG i = 0; i < count; ++i) {
        LONG index = bounds.lower + i;
        if (SafeArrayGetElement(value.parray, &index, &bytes[i]) != S_OK) return i;
    }
    return count;
}

HRESULT getByteElement(const VARIANT& value, LONG index, unsigned char& byte) {
    if (!isByteArray(value)) return E_INVALIDARG;
    return SafeArrayGetElement(value.parray, &index, &byte);
}

HRESULT putByteElement(const VARIANT& value, LONG index, unsigned char byte) {
    if (!isByteArray(value)) return E_INVALIDARG;
    return SafeArrayPutElement(value.parray, &index, &byte);
}

void copyFirstBytes(const VARIANT& value, unsigned char* bytes, LONG count) {
    for (LONG index = 0; index < count; ++index) {
        static_cast<void>(getByteElement(value, index, bytes[index]));
    }
}

std::size_t roomFor(const VARIANT& value, std::uint32_t limit) {
    return std::min(static_cast<std::uint32_t>(boundsOf(value).count()), limit);
}

ObjectTable::ObjectTable(std::size_t room) noexcept
    : slots_(static_cast<void**>(std::calloc(std::max<std::size_t>(room, 1), sizeof(void*)))),
      room_(static_cast<LONG>(std::min<std::size_t>(
          room, static_cast<std::size_t>(std::numeric_limits<LONG>::max())))) {}

ObjectTable::~ObjectTable() {
    for (LONG i = 0; i < count_; ++i) release(i);
    std::free(slots_);
}

LONG ObjectTable::fill(const VARIANT& value) {
    if (!valid() || value.vt != kObjectArray) return 0;
    count_ = SafeArrayToElements(value, slots_, room_);
    for (LONG i = 0; i < count_; ++i) slots_[i] = toObject(slots_[i]);
    return count_;
}

IWbemClassObject* ObjectTable::at(LONG index) const noexcept {
    return static_cast<IWbemClassObject*>(slots_[index]);
}

void ObjectTable::release(LONG index) noexcept {
    if (slots_[index] != nullptr) at(index)->Release();
    slots_[index] = nullptr;
}

void ObjectTable::keepOnPurpose() noexcept {
    slots_ = nullptr;
    count_ = 0;
}

}  // namespace quista

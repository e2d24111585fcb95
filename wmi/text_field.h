// Copying texts into the fixed fields of records.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cwchar>

namespace quista {

/// Copies a text into a field of `capacity` characters, cut so that its terminator fits.
inline void copyTerminated(wchar_t* field, std::size_t capacity, const wchar_t* text) {
    const std::size_t length = std::min(std::wcslen(text), capacity - 1);
    std::wmemcpy(field, text, length);
    field[length] = L'\0';
}

/// As copyTerminated, for an array field and a text that may be null, which leaves the field alone.
template <std::size_t Capacity>
void copyToField(wchar_t (&field)[Capacity], const wchar_t* text) {
    if (text != nullptr) copyTerminated(field, Capacity, text);
}

}  // namespace quista

// Ownership of a VARIANT, and its raw value.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <cstring>

namespace quista {

/// Owns one VARIANT and clears it. All of it is zero before a value comes in, so the raw value of a
/// property that cannot be read is 0. Neither copied nor moved.
class UniqueVariant {
  public:
    UniqueVariant() noexcept { std::memset(&value_, 0, sizeof(value_)); }
    UniqueVariant(const UniqueVariant&) = delete;
    UniqueVariant& operator=(const UniqueVariant&) = delete;
    ~UniqueVariant() { VariantClear(&value_); }

    VARIANT& get() noexcept { return value_; }
    const VARIANT& get() const noexcept { return value_; }
    VARTYPE type() const noexcept { return value_.vt; }

    void reset() noexcept {
        VariantClear(&value_);
        std::memset(&value_, 0, sizeof(value_));
    }

    /// Clears the value and takes a new one from an out-parameter.
    VARIANT* receive() noexcept {
        reset();
        return &value_;
    }

    /// Leaves the value uncleared, where callers rely on what the library does not release.
    void keepOnPurpose() noexcept { std::memset(&value_, 0, sizeof(value_)); }

    /// The low bits of the value field, whatever the type: integer properties
    /// come in several types, and their readers look at the bits alone.
    std::uint8_t rawByte() const noexcept { return rawValue<std::uint8_t>(); }
    std::uint32_t rawLong() const noexcept { return rawValue<std::uint32_t>(); }
    VARIANT_BOOL rawBoolean() const noexcept { return rawValue<VARIANT_BOOL>(); }

    /// Replaces the low 32 bits of the value and keeps its type. A type that holds a pointer gives
    /// way to a plain integer.
    void setLong(std::uint32_t bits) noexcept {
        if (holdsPointer()) {
            reset();
            value_.vt = VT_I4;
        }
        std::memcpy(&value_.llVal, &bits, sizeof(bits));
    }

  private:
    bool holdsPointer() const noexcept {
        const VARTYPE element = value_.vt & VT_TYPEMASK;
        return (value_.vt & (VT_ARRAY | VT_BYREF)) != 0 || element == VT_BSTR ||
               element == VT_UNKNOWN || element == VT_DISPATCH;
    }

    template <typename Integer>
    Integer rawValue() const noexcept {
        Integer bits;
        std::memcpy(&bits, &value_.llVal, sizeof(bits));
        return bits;
    }

    VARIANT value_;
};

}  // namespace quista

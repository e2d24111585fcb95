// VARIANTs of any type for tests, owned and cleared.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quista::test {

/// Owns a VARIANT. Move only.
class Value {
  public:
    Value() = default;
    Value(Value&& other) noexcept : variant_(std::exchange(other.variant_, VARIANT{})) {}
    Value& operator=(Value&& other) noexcept {
        std::swap(variant_, other.variant_);
        return *this;
    }
    ~Value() { VariantClear(&variant_); }

    /// A type with these bits as its value, or with nothing but zeros.
    static Value bits(VARTYPE type, std::int64_t value = 0);
    static Value real32(float value);
    static Value real64(double value);
    static Value text(const std::wstring& text);
    static Value boolean(SHORT value) { return bits(VT_BOOL, static_cast<USHORT>(value)); }
    static Value object(IUnknown* object);

    /// One-dimensional arrays; empty ones have the bounds 0 and -1.
    static Value shorts(const std::vector<SHORT>& elements, LONG lower = 0);
    static Value bytes(const std::vector<BYTE>& elements, LONG lower = 0);
    static Value longs(const std::vector<LONG>& elements, LONG lower = 0);
    static Value texts(const std::vector<std::wstring>& elements, LONG lower = 0);
    static Value objects(const std::vector<IUnknown*>& elements, LONG lower = 0);
    /// An array of default elements.
    static Value array(VARTYPE element, ULONG count, LONG lower = 0);
    /// A two-dimensional array of default elements.
    static Value matrix(VARTYPE element, ULONG rows, ULONG columns);

    /// The same value with the by-reference bit added to its type.
    Value byReference() &&;
    /// Hands the VARIANT to the caller.
    VARIANT release() { return std::exchange(variant_, VARIANT{}); }

    VARIANT& get() { return variant_; }
    const VARIANT& get() const { return variant_; }
    VARTYPE type() const { return variant_.vt; }
    SAFEARRAY* array() const { return variant_.parray; }

  private:
    VARIANT variant_{};
};

/// Values from which no element can be taken.
std::vector<Value> arraysWithoutElements(VARTYPE element);

}  // namespace quista::test

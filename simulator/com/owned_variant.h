// A VARIANT that clears itself.
#pragma once

#include <windows.h>

#include <new>
#include <ole2.h>
#include <utility>

namespace quista::simulator {

class OwnedVariant {
  public:
    OwnedVariant() = default;
    OwnedVariant(OwnedVariant&& other) noexcept : value_(std::exchange(other.value_, VARIANT{})) {}
    OwnedVariant& operator=(OwnedVariant&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~OwnedVariant() { VariantClear(&value_); }

    static OwnedVariant copyOf(const VARIANT& source) {
        OwnedVariant copy;
        if (FAILED(VariantCopy(&copy.value_, readable(source)))) throw std::bad_alloc();
        return copy;
    }

    /// Takes the source's value as another type, by the ordinary rules; false when it has none.
    bool convert(const VARIANT& source, VARTYPE type) {
        return SUCCEEDED(VariantChangeType(&value_, readable(source), 0, type));
    }

    VARIANT* get() { return &value_; }
    VARIANT* operator->() { return &value_; }
    VARIANT& operator*() { return value_; }
    const VARIANT& operator*() const { return value_; }
    /// Hands the content over; the target is overwritten, not cleared.
    void moveTo(VARIANT& target) { target = std::exchange(value_, VARIANT{}); }

  private:
    /// The system's functions only read their source, but do not say so everywhere.
    static VARIANT* readable(const VARIANT& source) { return const_cast<VARIANT*>(&source); }

    VARIANT value_{};
};

}  // namespace quista::simulator

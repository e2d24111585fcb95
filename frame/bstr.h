// Ownership of a BSTR.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <utility>

namespace quista {

/// Owns one BSTR and frees it. Move only.
class UniqueBstr {
  public:
    UniqueBstr() noexcept = default;
    explicit UniqueBstr(const wchar_t* text) noexcept : value_(SysAllocString(text)) {}
    UniqueBstr(UniqueBstr&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
    UniqueBstr& operator=(UniqueBstr&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~UniqueBstr() { SysFreeString(value_); }

    BSTR get() const noexcept { return value_; }
    explicit operator bool() const noexcept { return value_ != nullptr; }

    /// Frees the string and takes a new one from an out-parameter.
    BSTR* receive() noexcept {
        SysFreeString(std::exchange(value_, nullptr));
        return &value_;
    }

    /// Leaves the string unfreed, where callers rely on what the library does not release.
    void keepOnPurpose() noexcept { value_ = nullptr; }

  private:
    BSTR value_ = nullptr;
};

}  // namespace quista

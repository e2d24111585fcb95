// Ownership of one reference to a COM object.
#pragma once

#include <utility>

namespace quista {

/// Owns one reference and releases it. Move only.
template <typename Interface>
class ComRef {
  public:
    ComRef() noexcept = default;
    /// Takes over a reference that the caller owns.
    explicit ComRef(Interface* owned) noexcept : object_(owned) {}
    ComRef(ComRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComRef& operator=(ComRef&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComRef() { reset(); }

    Interface* get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    void reset() noexcept {
        if (object_ != nullptr) std::exchange(object_, nullptr)->Release();
    }

    /// Releases the object and takes a new one from an out-parameter.
    Interface** receive() noexcept {
        reset();
        return &object_;
    }

    /// Hands the reference to the caller.
    Interface* release() noexcept { return std::exchange(object_, nullptr); }

    /// Leaves the object unreleased, where callers rely on what the library does not release.
    void keepOnPurpose() noexcept { object_ = nullptr; }

  private:
    Interface* object_ = nullptr;
};

}  // namespace quista

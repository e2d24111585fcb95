// The caller's buffers of the adapter lookups.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace quista {

inline constexpr std::size_t kAdapterTextBytes = 256;

/// A text that a search fills, or the characters '0', without a terminator, when it finds nothing.
class AdapterText {
  public:
    AdapterText() { bytes_.fill('0'); }

    char* data() { return bytes_.data(); }

    /// Takes at most 128 characters: a shorter text is padded with zeros as far, a longer one has
    /// no terminator there.
    void assign(const char* text) {
        constexpr std::size_t kMaximum = 128;
        const std::size_t length = strnlen(text, kMaximum);
        std::memcpy(bytes_.data(), text, length);
        std::memset(bytes_.data() + length, 0, kMaximum - length);
    }

    /// Copies `length` characters to the caller, padded with zeros behind a shorter text. A null
    /// buffer or a length of 0 or less is left alone.
    void copyTo(char* buffer, int length) const {
        if (buffer == nullptr || length <= 0) return;
        const auto room = static_cast<std::size_t>(length);
        const std::size_t used = strnlen(bytes_.data(), std::min(room, bytes_.size()));
        std::memcpy(buffer, bytes_.data(), used);
        std::memset(buffer + used, 0, room - used);
    }

  private:
    std::array<char, kAdapterTextBytes> bytes_;
};

}  // namespace quista

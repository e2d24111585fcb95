// The identifier by which callers name a path.
#pragma once

#include <cstdint>

namespace quista {

/// The identifier of a path: its signed 32-bit DsmId, widened with its sign.
constexpr std::uint64_t pathIdentifierOf(std::uint32_t dsmId) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(static_cast<std::int32_t>(dsmId)));
}

}  // namespace quista

#pragma once

namespace quista::cli {

inline constexpr const char* kToolVersion = QUISTA_VERSION;

}  // namespace quista::cli

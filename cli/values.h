// Values that users write: numbers, path identifiers, policies, reservation keys. Pure functions;
// none throws.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quista::cli {

/// A decimal number of 32 bits.
std::optional<std::uint32_t> parseNumber(std::string_view text);

/// Decimal, also negative, or 0x...: "2147484163", "-2147483133" and "0x80000203" are the same.
std::optional<std::uint32_t> parsePathId(std::string_view text);

/// The form that the library takes an identifier in: widened to 64 bits with its sign.
unsigned long long widenedPathId(std::uint32_t id);

/// A policy by its number or name; case, blanks and punctuation of the name do not count.
std::optional<std::uint32_t> parsePolicy(std::string_view text);

/// 16 hexadecimal digits.
std::optional<std::array<std::uint8_t, 8>> parseReservationKey(std::string_view text);

/// What is wrong with an argument, for the command line; empty when nothing is.
std::string checkNumber(const std::string& text);
std::string checkPathId(const std::string& text);
std::string checkPolicy(const std::string& text);
std::string checkReservationKey(const std::string& text);

}  // namespace quista::cli

#include "cli/values.h"

#include <charconv>
#include <fmt/format.h>
#include <limits>

#include "cli/names.h"

namespace quista::cli {
namespace {

template <class Number>
std::optional<Number> parseWhole(std::string_view text, int base) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

// The letters and digits of a name, in lower case.
std::string bareName(std::string_view text) {
    std::string bare;
    for (const char character : text) {
        if (character >= 'A' && character <= 'Z') {
            bare += static_cast<char>(character - 'A' + 'a');
        } else if ((character >= 'a' && character <= 'z') ||
                   (character >= '0' && character <= '9')) {
            bare += character;
        }
    }
    return bare;
}

}  // namespace

std::optional<std::uint32_t> parseNumber(std::string_view text) {
    return parseWhole<std::uint32_t>(text, 10);
}

std::optional<std::uint32_t> parsePathId(std::string_view text) {
    if (text.starts_with("0x") || text.starts_with("0X")) {
        return parseWhole<std::uint32_t>(text.substr(2), 16);
    }
    if (!text.starts_with('-')) return parseNumber(text);
    const auto number = parseWhole<std::int32_t>(text, 10);
    if (!number) return std::nullopt;
    return static_cast<std::uint32_t>(*number);
}

unsigned long long widenedPathId(std::uint32_t id) {
    return static_cast<unsigned long long>(static_cast<long long>(static_cast<std::int32_t>(id)));
}

std::optional<std::uint32_t> parsePolicy(std::string_view text) {
    const auto number = parseNumber(text);
    for (const NamedCode& policy : policyNames()) {
        if (number == policy.code) return policy.code;
        if (!number && bareName(policy.name) == bareName(text)) return policy.code;
    }
    return std::nullopt;
}

std::optional<std::array<std::uint8_t, 8>> parseReservationKey(std::string_view text) {
    std::array<std::uint8_t, 8> key{};
    if (text.size() != 2 * key.size()) return std::nullopt;
    for (std::size_t i = 0; i < key.size(); ++i) {
        const auto byte = parseWhole<std::uint8_t>(text.substr(2 * i, 2), 16);
        if (!byte) return std::nullopt;
        key[i] = *byte;
    }
    return key;
}

std::string checkNumber(const std::string& text) {
    if (parseNumber(text)) return {};
    return fmt::format("expected a number, 0 to {}, got '{}'",
                       std::numeric_limits<std::uint32_t>::max(), text);
}

std::string checkPathId(const std::string& text) {
    if (parsePathId(text)) return {};
    return fmt::format("expected a path identifier of 32 bits, decimal or 0x..., got '{}'", text);
}

std::string checkPolicy(const std::string& text) {
    if (parsePolicy(text)) return {};
    std::string names;
    for (const NamedCode& policy : policyNames()) {
        names += fmt::format("{}{} ({})", names.empty() ? "" : ", ", policy.name, policy.code);
    }
    return fmt::format("expected one of the policies {}, got '{}'", names, text);
}

std::string checkReservationKey(const std::string& text) {
    if (parseReservationKey(text)) return {};
    return fmt::format("expected 16 hexadecimal digits, got '{}'", text);
}

}  // namespace quista::cli

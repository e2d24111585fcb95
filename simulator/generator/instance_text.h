// Instances in MOF's notation, put together piece by piece.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quista::simulator {

/// One line of an instance: a property and its value as MOF text.
struct MofProperty {
    std::wstring_view name;
    std::wstring value;
};

/// `instance of CLASS { ... }` over several lines, without a semicolon behind it.
std::wstring instanceOf(std::wstring_view className, const std::vector<MofProperty>& properties);

/// A whole statement: an instance of a driver's class, which always begins with its instance name.
std::wstring namedInstance(std::wstring_view className, std::wstring_view instanceName,
                           const std::vector<MofProperty>& properties);

/// An array of values or embedded instances, one to a line.
std::wstring arrayOf(const std::vector<std::wstring>& elements);

std::wstring numberText(std::uint64_t number);
std::wstring booleanText(bool truth);
/// An array of bytes on one line.
std::wstring bytesText(std::span<const std::uint8_t> bytes);

/// The number in lower-case hexadecimal digits, padded with zeros to a width.
std::wstring hexDigits(std::uint64_t number, unsigned width);

}  // namespace quista::simulator

// UTF-8 text: conversion from and to UTF-16, and what it takes up on a terminal.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quista::cli {

/// Unpaired surrogates and invalid bytes become U+FFFD.
std::string toUtf8(std::wstring_view text);
std::wstring toWide(std::string_view text);
/// The text in a field that a long one fills without a terminator.
template <std::size_t Size>
std::wstring_view boundedText(const wchar_t (&field)[Size], std::size_t limit = Size) {
    const wchar_t* end = std::find(field, field + std::min(limit, Size), L'\0');
    return {field, static_cast<std::size_t>(end - field)};
}
/// Bytes of the system's code page, in UTF-8.
std::string fromSystemCodePage(std::string_view bytes);

/// The text with control characters written as \xNN, so that a name read from a device can neither
/// break a table nor steer a terminal.
std::string printable(std::string_view text);

/// Columns that the text takes up on a terminal: none for combining marks, two for wide characters.
std::size_t displayWidth(std::string_view text);

/// Breaks the text into lines of at most `width` columns, at blanks where there are any.
std::vector<std::string> wrap(std::string_view text, std::size_t width);

/// True when the texts are the same but for the case of their letters.
bool equalIgnoringCase(std::string_view left, std::string_view right);

}  // namespace quista::cli

// Conversions between wide and 8-bit text as the log writes it.
#pragma once

#include <string>
#include <string_view>

namespace quista::test {

/// The text in the system's 8-bit code page; characters without a form in it become '?'.
std::string narrow(std::wstring_view text);
/// 8-bit text of the system's code page as wide text.
std::wstring widen(std::string_view text);

}  // namespace quista::test

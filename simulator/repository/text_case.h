// Names and texts without regard to case, as WMI compares them everywhere.
#pragma once

#include <string>
#include <string_view>

namespace quista::simulator {

/// The text in a form that is the same for all its spellings in upper and lower case.
std::wstring foldCase(std::wstring_view text);

bool equalNoCase(std::wstring_view left, std::wstring_view right);

/// Negative, zero or positive, as the left text sorts before, with or after the right one.
int compareNoCase(std::wstring_view left, std::wstring_view right);

}  // namespace quista::simulator

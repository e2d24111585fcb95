// Writes files so that a crash leaves either the old file or the new one.
#pragma once

#include <string>
#include <string_view>

namespace quista::cli {

/// Writes a file beside the old one, then puts it in its place.
/// @return 0, else the Win32 error of the step that failed; the old file is untouched then
unsigned long writeFileAtomically(const std::wstring& filePath, std::string_view bytes);

}  // namespace quista::cli

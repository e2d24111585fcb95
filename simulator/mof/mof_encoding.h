// The encodings of MOF files.
#pragma once

#include <string>
#include <string_view>

namespace quista::simulator {

/// The text of a file in UTF-8, with or without byte-order mark, or in UTF-16LE with one. Throws
/// MofFailure for `file` where the bytes are neither.
std::wstring decodeMof(std::string_view bytes, const std::wstring& file);

}  // namespace quista::simulator

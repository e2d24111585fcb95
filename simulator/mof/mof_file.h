// Writes MOF files.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quista::simulator {

/// Writes the text as a UTF-8 file, or says why it cannot. The file is replaced as a whole: the
/// text is first written to `<path>.saving`, in the same folder, and takes the file's place when it
/// is safe on disk. Whatever happens in between, the old file stays as it was.
std::optional<std::wstring> writeMofFile(const std::wstring& path, std::wstring_view text);

}  // namespace quista::simulator

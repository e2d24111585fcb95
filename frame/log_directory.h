// Where the error log lies: the directory that the brand's registry key names.
#pragma once

#include <optional>
#include <string>

namespace quista {

/// The registry value LogDir of the key that the company name in the library's own version resource
/// chooses; a value without characters counts. Nothing when there is no version resource, company
/// name, key or value, or when the value does not fit into 200 characters.
std::optional<std::wstring> configuredLogDirectory();

}  // namespace quista

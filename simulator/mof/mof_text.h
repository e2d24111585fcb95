// Values as MOF writes them.
#pragma once

#include <string>
#include <string_view>

#include "simulator/repository/cim_value.h"

namespace quista::simulator {

/// A string literal with its quotes and escapes.
std::wstring mofString(std::wstring_view text);

/// A scalar of the type; no NULL, no object and no array.
std::wstring mofScalar(CimType type, const CimValue& value);

}  // namespace quista::simulator

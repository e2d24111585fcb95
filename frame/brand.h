// The registry keys of the product's two brands, under HKEY_LOCAL_MACHINE.
#pragma once

namespace quista {

inline constexpr const wchar_t* kVelmoraKey = L"SOFTWARE\\Velmora\\MPIO";
inline constexpr const wchar_t* kPelmarkKey = L"SOFTWARE\\Pelmark\\MPIO";

}  // namespace quista

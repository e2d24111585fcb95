// Values and flavors as MOF writes them.
#pragma once

#include <string>
#include <string_view>

#include "simulator/repository/cim_class.h"
#include "simulator/repository/cim_value.h"

namespace quista::simulator {

/// The flavors of qualifiers that mean something, under their names.
struct MofFlavor {
    std::wstring_view name;
    QualifierFlavor flavor;
};
inline constexpr MofFlavor kMofFlavors[] = {
    {L"ToInstance", QualifierFlavor::toInstance},
    {L"ToSubclass", QualifierFlavor::toSubclass},
    {L"DisableOverride", QualifierFlavor::disableOverride},
    {L"Amended", QualifierFlavor::amended},
    {L"Translatable", QualifierFlavor::translatable},
};

/// A string literal with its quotes and escapes.
std::wstring mofString(std::wstring_view text);

/// A scalar of the type; no NULL, no object and no array.
std::wstring mofScalar(CimType type, const CimValue& value);

}  // namespace quista::simulator

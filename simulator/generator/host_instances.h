// The instances that exist once per host and depend on its LUNs, as MOF text.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/generator/host_plan.h"

namespace quista::simulator {

/// The one storage system of a generated host: its names.
inline constexpr wchar_t kStorageSystem[] = L"load.storage.example";
inline constexpr wchar_t kStorageIqn[] = L"iqn.2001-04.com.example:storage.load";
inline constexpr std::array<std::uint8_t, 8> kStorageNode = {0x50, 0x24, 0xb5, 0x60};
/// The node name in the form in which MPIO identifies a controller.
inline constexpr std::array<std::uint8_t, 32> kStorageIdentifier = {0x50, 0x24, 0xb5, 0x60};
/// The host's key for persistent reservations, as in the driver's settings.
inline constexpr std::array<std::uint8_t, 8> kReservationKey = {0x4b, 0x56, 0, 0, 0, 0, 0x5a, 0x01};

/// MPIO's controllers and its list of disks.
std::wstring mpioHostInstances(const std::vector<LunPlan>& luns);

}  // namespace quista::simulator

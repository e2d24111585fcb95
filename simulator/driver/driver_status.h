// What the simulated DSM driver answers to requests.
#pragma once

#include <cstdint>

namespace quista::simulator {

/// The driver's answer, which methods deliver as ReturnCode or Status. The refusals are Windows'
/// NTSTATUS values of the nearest meaning, except for the one that the DSM defines itself.
enum class DriverStatus : std::uint32_t {
    success = 0,
    /// A number that means nothing, or a required value that is NULL.
    invalidParameter = 0xC000000D,
    /// The LUN has no path of that DsmId.
    noSuchPath = 0xC000000E,
    /// The path has failed: nothing can be done with it but giving it a weight.
    pathFailed = 0xC000009D,
    /// The path is disabled: it has to be enabled first.
    pathDisabled = 0xC00000A3,
    /// The LUN's policy does not know the operation.
    notUnderThisPolicy = 0xC00000BB,
    /// The storage system does not support the policy.
    notSupportedByStorage = 0xE0000008,
};

/// Whether a client takes the number for a failure: NTSTATUS has its severity in the top two bits.
constexpr bool isRefusal(std::uint64_t status) {
    return (status & 0xC0000000) != 0;
}

}  // namespace quista::simulator

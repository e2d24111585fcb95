// Finding the LUN instance that owns a path.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "frame/bstr.h"

namespace quista {

/// The LUN that owns a path, as a method call needs it.
struct PathOwner {
    bool found = false;
    DWORD status = 0;          ///< the status that the search leaves behind
    UniqueBstr objectPath;     ///< null when the instance's name could not be read
    std::uint32_t policy = 0;  ///< KORVADSMLoadBalancePolicy
};

/// Searches the instances of a class, in enumeration order, for the first whose paths hold the
/// identifier (DsmId, widened with its sign).
PathOwner findPathOwner(const std::wstring& className, std::uint64_t pathId);

}  // namespace quista

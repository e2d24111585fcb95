// Blocks for the descriptors that callers free with CoTaskMemFree.
#pragma once

#include <windows.h>

#include <objbase.h>

#include <cstddef>
#include <cstring>

#include "quista/records/mpio_records.h"

namespace quista {

/// A zeroed descriptor with room for `numberOfPaths` + 1 paths; null without memory.
inline _MPIO_GET_DESCRIPTOR* allocateDescriptor(unsigned long numberOfPaths) {
    const std::size_t size = sizeof(_MPIO_GET_DESCRIPTOR) +
                             static_cast<std::size_t>(numberOfPaths) * sizeof(_PDO_INFORMATION);
    auto* descriptor = static_cast<_MPIO_GET_DESCRIPTOR*>(CoTaskMemAlloc(size));
    if (descriptor != nullptr) std::memset(descriptor, 0, size);
    return descriptor;
}

}  // namespace quista

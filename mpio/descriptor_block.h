// Blocks for the descriptors that callers free with CoTaskMemFree.
#pragma once

#include <cstddef>

#include "frame/task_memory.h"
#include "quista/records/mpio_records.h"

namespace quista {

/// A zeroed descriptor with room for `numberOfPaths` + 1 paths; null without memory.
inline _MPIO_GET_DESCRIPTOR* allocateDescriptor(unsigned long numberOfPaths) {
    const std::size_t size = sizeof(_MPIO_GET_DESCRIPTOR) +
                             static_cast<std::size_t>(numberOfPaths) * sizeof(_PDO_INFORMATION);
    return allocateTaskMemory<_MPIO_GET_DESCRIPTOR>(size);
}

}  // namespace quista

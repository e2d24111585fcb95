// Blocks from COM's task allocator: the records that callers free with CoTaskMemFree.
#pragma once

#include <windows.h>

#include <objbase.h>

#include <cstddef>
#include <cstring>
#include <memory>

namespace quista {

/// A zeroed block of `size` bytes from CoTaskMemAlloc; null without memory.
template <typename Record>
Record* allocateTaskMemory(std::size_t size) noexcept {
    void* block = CoTaskMemAlloc(size);
    if (block != nullptr) std::memset(block, 0, size);
    return static_cast<Record*>(block);
}

struct TaskMemoryDeleter {
    void operator()(void* block) const noexcept { CoTaskMemFree(block); }
};

/// Owns one block and frees it with CoTaskMemFree.
template <typename Record>
using UniqueTaskMemory = std::unique_ptr<Record, TaskMemoryDeleter>;

}  // namespace quista

// Blocks that the library leaves to its caller.
#pragma once

#include <windows.h>

#include <objbase.h>

#include <memory>

namespace quista::cli {

struct FreeTaskMemory {
    void operator()(void* block) const { CoTaskMemFree(block); }
};

template <class Record>
using TaskMemory = std::unique_ptr<Record, FreeTaskMemory>;

}  // namespace quista::cli

// Counts what the process holds: heap blocks and handles. For leaks that are kept on purpose, and
// for those that must not be.
#pragma once

#include <cstddef>
#include <string>

namespace quista::test {

/// Number of blocks in use on all heaps of the process.
std::size_t countHeapBlocks();
/// Number of those that begin with this text and its terminator.
std::size_t countHeapTexts(const std::wstring& text);
/// Number of open handles, registry keys included.
std::size_t countHandles();

}  // namespace quista::test

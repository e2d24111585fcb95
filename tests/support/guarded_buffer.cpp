#include "tests/support/guarded_buffer.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace quista::test {

namespace {

constexpr std::size_t kPage = 4096;

}  // namespace

GuardedRegion allocateGuarded(std::size_t size) {
    const std::size_t usable = std::max(kPage, (size + kPage - 1) / kPage * kPage);
    void* region = VirtualAlloc(nullptr, usable + kPage, MEM_RESERVE, PAGE_NOACCESS);
    if (region == nullptr) return {};
    if (VirtualAlloc(region, usable, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
        freeGuarded(region);
        return {};
    }
    return {region, static_cast<unsigned char*>(region) + (usable - size)};
}

void freeGuarded(void* region) {
    if (region != nullptr) VirtualFree(region, 0, MEM_RELEASE);
}

GuardedBuffer::GuardedBuffer(std::size_t size) : size_(size) {
    const GuardedRegion guarded = allocateGuarded(size);
    if (guarded.region == nullptr) throw std::bad_alloc();
    region_ = guarded.region;
    data_ = guarded.data;
    fill();
}

GuardedBuffer::~GuardedBuffer() {
    freeGuarded(region_);
}

void GuardedBuffer::fill(unsigned char value) {
    std::memset(data_, value, size_);
}

bool GuardedBuffer::untouched(std::size_t offset, std::size_t length) const {
    return std::all_of(data_ + offset, data_ + offset + length,
                       [](unsigned char byte) { return byte == kPattern; });
}

}  // namespace quista::test

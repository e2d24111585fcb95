// Memory that ends at a guard page, for records and texts that the caller passes in.
#pragma once

#include <cstddef>

namespace quista::test {

/// A block whose first byte behind the end faults, filled with a pattern so that bytes nobody wrote
/// can be told.
class GuardedBuffer {
  public:
    static constexpr unsigned char kPattern = 0xA5;

    explicit GuardedBuffer(std::size_t size);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    unsigned char* data() const { return data_; }
    std::size_t size() const { return size_; }
    template <typename T>
    T* as() const {
        return static_cast<T*>(static_cast<void*>(data_));
    }

    /// Fills the block, with the pattern unless told otherwise.
    void fill(unsigned char value = kPattern);
    /// Whether `length` bytes from `offset` still hold the pattern.
    bool untouched(std::size_t offset, std::size_t length) const;
    bool untouched() const { return untouched(0, size_); }

  private:
    void* region_;
    unsigned char* data_;
    std::size_t size_;
};

/// Pages of which the last is a guard page: `size` bytes end where it begins. Given back with
/// `freeGuarded`. Null without memory.
struct GuardedRegion {
    void* region = nullptr;
    unsigned char* data = nullptr;
};
GuardedRegion allocateGuarded(std::size_t size);
void freeGuarded(void* region);

}  // namespace quista::test

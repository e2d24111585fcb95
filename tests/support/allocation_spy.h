// Watches CoTaskMemAlloc and, through it, BSTRs and SAFEARRAYs: guard pages, leaks, failures.
//
// The system keeps freed BSTRs for reuse without telling anyone; the tests therefore run with
// OANOCACHE=1 in their environment.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace quista::test {

/// The process's one allocation spy. It is registered on first use and stays, since a spy whose
/// blocks are alive cannot be taken back.
class AllocationSpy {
  public:
    static AllocationSpy& instance();

    /// Places blocks of this many bytes or more, up to `maximum`, so that the first byte behind
    /// them faults.
    void guardBlocks(std::size_t minimum, std::size_t maximum = static_cast<std::size_t>(-1));
    /// Lets allocations of exactly this many bytes fail: `count` of them from the `occurrence`th
    /// on, 0 for all.
    void failBlocks(std::size_t size, unsigned occurrence = 1, unsigned count = 0);
    /// Byte that new blocks are filled with, to see what the library leaves unfilled; off again
    /// after `stop`.
    void fillBlocks(unsigned char value);
    /// Ends guarding, failing and filling.
    void stop();

    /// How many blocks of exactly this size were asked for since `stop` or the start.
    unsigned requests(std::size_t size) const;

    /// A point in time for `survivorsSince`.
    std::size_t mark() const;
    /// Sizes of the blocks that were allocated since `mark` and are still alive, oldest first.
    std::vector<std::size_t> survivorsSince(std::size_t mark) const;
    /// Texts of those of them that are BSTRs.
    std::vector<std::wstring> survivingTextsSince(std::size_t mark) const;

  private:
    AllocationSpy();
    ~AllocationSpy();

    class Spy;
    std::unique_ptr<Spy> spy_;
};

/// Watches the allocations of a scope; guarding and failures end with it.
class AllocationScope {
  public:
    AllocationScope() : mark_(AllocationSpy::instance().mark()) {}
    ~AllocationScope() { AllocationSpy::instance().stop(); }
    AllocationScope(const AllocationScope&) = delete;
    AllocationScope& operator=(const AllocationScope&) = delete;

    AllocationSpy* operator->() const { return &AllocationSpy::instance(); }

    std::vector<std::size_t> survivors() const {
        return AllocationSpy::instance().survivorsSince(mark_);
    }
    std::vector<std::wstring> survivingTexts() const {
        return AllocationSpy::instance().survivingTextsSince(mark_);
    }

  private:
    std::size_t mark_;
};

}  // namespace quista::test

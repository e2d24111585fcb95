// Lets allocations with `new (std::nothrow)` fail.
#pragma once

#include <cstddef>

namespace quista::test {

/// For the object's life, such allocations of exactly this many bytes give null. One at a time.
class FailingNew {
  public:
    explicit FailingNew(std::size_t size);
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;

    /// How many failed.
    unsigned failures() const;
};

}  // namespace quista::test

#include "tests/adapters/failing_new.h"

#include <new>

namespace quista::test {

namespace {

std::size_t gFailingSize = 0;
unsigned gFailures = 0;

bool mustFail(std::size_t size) {
    if (gFailingSize == 0 || size != gFailingSize) return false;
    ++gFailures;
    return true;
}

}  // namespace

FailingNew::FailingNew(std::size_t size) {
    gFailures = 0;
    gFailingSize = size;
}

FailingNew::~FailingNew() {
    gFailingSize = 0;
}

unsigned FailingNew::failures() const {
    return gFailures;
}

}  // namespace quista::test

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (quista::test::mustFail(size)) return nullptr;
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    if (quista::test::mustFail(size)) return nullptr;
    try {
        return ::operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

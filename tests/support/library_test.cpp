#include "tests/support/library_test.h"

#include "quista/frame.h"

namespace quista::test {

LibraryTest::~LibraryTest() {
    DSMUninitialize();
}

unsigned long LibraryTest::openSession() {
    const unsigned long status = DSMInitialize(0);
    log.clear();
    host->clearTrace();
    return status;
}

void LibraryTest::closeSession() {
    DSMUninitialize();
}

}  // namespace quista::test

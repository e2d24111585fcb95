// How far the records of the discovery library can be read.
#include <gtest/gtest.h>

#include "adapters/iscsi_discovery.h"

namespace quista::test {
namespace {

using Buffer = iscsi::RecordBuffer<iscsi::Session>;

struct RecordBufferTest : testing::Test {
    RecordBufferTest() {
        buffer.size = 4 * sizeof(iscsi::Connection) + 8;
        buffer.bytes.reset(new std::byte[buffer.size]{});
    }
    const iscsi::Connection* connection(std::size_t index) const {
        return reinterpret_cast<const iscsi::Connection*>(buffer.bytes.get()) + index;
    }

    Buffer buffer;
};

TEST_F(RecordBufferTest, CountThatFitsStands) {
    EXPECT_EQ(buffer.bounded(connection(0), 4), 4u);
    EXPECT_EQ(buffer.bounded(connection(3), 1), 1u);
    EXPECT_EQ(buffer.bounded(connection(1), 0), 0u);
}

TEST_F(RecordBufferTest, CountEndsWithTheBuffer) {
    EXPECT_EQ(buffer.bounded(connection(0), 5), 4u);
    EXPECT_EQ(buffer.bounded(connection(2), 0xFFFFFFFF), 2u);
    EXPECT_EQ(buffer.bounded(connection(4), 1), 0u) << "less than one is left";
}

TEST_F(RecordBufferTest, NoPointerNoElements) {
    EXPECT_EQ(buffer.bounded<iscsi::Connection>(nullptr, 3), 0u);
}

TEST_F(RecordBufferTest, ElementsElsewhereAreTheLibrarysOwn) {
    const iscsi::Connection elsewhere[2]{};
    EXPECT_EQ(buffer.bounded(elsewhere, 2), 2u);
}

}  // namespace
}  // namespace quista::test

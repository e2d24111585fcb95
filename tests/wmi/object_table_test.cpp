// Tables of embedded objects: what they hold, and what they keep.
#include <cstdlib>
#include <gtest/gtest.h>

#include "tests/wmi/fake_object.h"
#include "tests/wmi/value.h"
#include "wmi/safe_arrays.h"

namespace quista::test {
namespace {

TEST(ObjectTableTest, ObjectsAreHeldUntilTheyAreReleased) {
    FakeObject first;
    FakeObject second;
    const Value array = Value::objects({&first, &second});
    {
        ObjectTable table(2);
        ASSERT_TRUE(table.valid());
        EXPECT_EQ(table.fill(array.get()), 2);
        EXPECT_EQ(table.count(), 2);
        EXPECT_EQ(table.at(0), &first);
        EXPECT_EQ(table.at(1), &second);
        EXPECT_EQ(table.slots()[1], &second);
        EXPECT_EQ(first.references(), 2u);
        table.release(0);
        EXPECT_EQ(table.at(0), nullptr);
        EXPECT_EQ(first.references(), 1u);
        EXPECT_EQ(second.references(), 2u);
    }
    EXPECT_EQ(first.references(), 1u);
    EXPECT_EQ(second.references(), 1u);
}

TEST(ObjectTableTest, ObjectsBeyondTheRoomAreNotFetched) {
    FakeObject object;
    const Value array = Value::objects({&object, &object, &object});
    ObjectTable table(2);
    EXPECT_EQ(table.fill(array.get()), 2);
    EXPECT_EQ(object.references(), 5u);
    ObjectTable none(0);
    EXPECT_EQ(none.fill(array.get()), 0);
}

TEST(ObjectTableTest, ElementsThatAreNoWmiObjectsStandAsNull) {
    FakeObject object;
    Stranger stranger;
    {
        const Value array = Value::objects({nullptr, &stranger, &object});
        ObjectTable table(3);
        EXPECT_EQ(table.fill(array.get()), 3);
        EXPECT_EQ(table.at(0), nullptr);
        EXPECT_EQ(table.at(1), nullptr);
        EXPECT_EQ(table.at(2), &object);
    }
    EXPECT_EQ(stranger.references(), 0u);
    EXPECT_EQ(object.references(), 0u);
}

TEST(ObjectTableTest, OtherValuesHaveNoObjects) {
    ObjectTable table(4);
    for (const Value& array : arraysWithoutElements(VT_UNKNOWN)) {
        EXPECT_EQ(table.fill(array.get()), 0);
    }
    EXPECT_EQ(table.fill(Value::longs({1, 2}).get()), 0);
    EXPECT_EQ(table.fill(Value::texts({L"a"}).get()), 0);
}

TEST(ObjectTableTest, KeptObjectsOutliveTheirTable) {
    FakeObject object;
    const Value array = Value::objects({&object});
    {
        ObjectTable table(1);
        table.fill(array.get());
        EXPECT_EQ(table.objects()[0], &object);
        table.keepObjectsOnPurpose();
    }
    EXPECT_EQ(object.references(), 2u);
    object.Release();
}

TEST(ObjectTableTest, KeptTableAndObjectsAreNotReleased) {
    FakeObject object;
    const Value array = Value::objects({&object});
    void** slots = nullptr;
    {
        ObjectTable table(1);
        table.fill(array.get());
        slots = table.slots();
        table.keepOnPurpose();
    }
    EXPECT_EQ(object.references(), 2u);
    EXPECT_EQ(slots[0], &object) << "the table lives on too";
    object.Release();
    std::free(slots);
}

}  // namespace
}  // namespace quista::test

// Moving array contents: bounds, capacities, element types and references.
#include "wmi/safe_arrays.h"

#include <climits>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/allocation_spy.h"
#include "tests/support/guarded_buffer.h"
#include "tests/wmi/fake_object.h"
#include "tests/wmi/value.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Slots that end at a guard page.
class Slots {
  public:
    explicit Slots(std::size_t count) : buffer_(count * sizeof(void*)) {}

    void** data() const { return buffer_.as<void*>(); }
    template <typename T>
    T& at(std::size_t index) const {
        return *reinterpret_cast<T*>(buffer_.data() + index * sizeof(void*));
    }
    bool untouched(std::size_t first, std::size_t count = 1) const {
        return buffer_.untouched(first * sizeof(void*), count * sizeof(void*));
    }

  private:
    GuardedBuffer buffer_;
};

// ---- SafeArrayToElements

TEST(ArrayToElementsTest, NumbersFillOneSlotEach) {
    const Value array = Value::longs({10, -20, 30});
    const Slots slots(3);
    EXPECT_EQ(SafeArrayToElements(array.get(), slots.data(), 3), 3);
    EXPECT_EQ(slots.at<LONG>(0), 10);
    EXPECT_EQ(slots.at<LONG>(1), -20);
    EXPECT_EQ(slots.at<LONG>(2), 30);
}

TEST(ArrayToElementsTest, SmallElementsLeaveTheRestOfTheirSlot) {
    const Value array = Value::bytes({1, 2});
    const GuardedBuffer slots(16);
    EXPECT_EQ(SafeArrayToElements(array.get(), slots.as<void*>(), 2), 2);
    EXPECT_EQ(slots.data()[0], 1);
    EXPECT_TRUE(slots.untouched(1, 7));
    EXPECT_EQ(slots.data()[8], 2);
    EXPECT_TRUE(slots.untouched(9, 7));
}

TEST(ArrayToElementsTest, StringsComeAsCopies) {
    Value array = Value::texts({L"first", L"second"});
    const Slots slots(2);
    EXPECT_EQ(SafeArrayToElements(array.get(), slots.data(), 2), 2);
    array = Value();
    EXPECT_STREQ(slots.at<BSTR>(0), L"first");
    EXPECT_STREQ(slots.at<BSTR>(1), L"second");
    SysFreeString(slots.at<BSTR>(0));
    SysFreeString(slots.at<BSTR>(1));
}

TEST(ArrayToElementsTest, InterfacesComeWithAReference) {
    FakeObject object;
    const Value array = Value::objects({&object, nullptr});
    ASSERT_EQ(object.references(), 1u);
    const Slots slots(2);
    EXPECT_EQ(SafeArrayToElements(array.get(), slots.data(), 2), 2);
    EXPECT_EQ(object.references(), 2u);
    EXPECT_EQ(slots.at<IUnknown*>(0), &object);
    EXPECT_EQ(slots.at<IUnknown*>(1), nullptr);
    slots.at<IUnknown*>(0)->Release();
}

TEST(ArrayToElementsTest, FirstElementFillsTheFirstSlotWhateverTheLowerBound) {
    for (const LONG lower : {-3, 1, 1000}) {
        const Value array = Value::longs({10, 20}, lower);
        const Slots slots(2);
        EXPECT_EQ(SafeArrayToElements(array.get(), slots.data(), 2), 2);
        EXPECT_EQ(slots.at<LONG>(0), 10);
        EXPECT_EQ(slots.at<LONG>(1), 20);
    }
}

TEST(ArrayToElementsTest, ElementsBeyondTheCapacityAreNotFetched) {
    FakeObject object;
    const Value array = Value::objects({&object, &object, &object});
    const Slots slots(2);
    EXPECT_EQ(SafeArrayToElements(array.get(), slots.data(), 2), 2);
    EXPECT_EQ(object.references(), 5u);
    slots.at<IUnknown*>(0)->Release();
    slots.at<IUnknown*>(1)->Release();
    EXPECT_EQ(SafeArrayToElements(array.get(), slots.data(), 0), 0);
}

TEST(ArrayToElementsTest, ArrayWithoutElementsTouchesNothing) {
    for (const Value& array : arraysWithoutElements(VT_UNKNOWN)) {
        const Slots slots(4);
        EXPECT_EQ(SafeArrayToElements(array.get(), slots.data(), 4), 0);
        EXPECT_TRUE(slots.untouched(0, 4));
    }
}

TEST(ArrayToElementsTest, ElementsWiderThanASlotAreRefused) {
    const Value array = Value::array(VT_VARIANT, 2);
    const Slots slots(2);
    EXPECT_EQ(SafeArrayToElements(array.get(), slots.data(), 2), 0);
    EXPECT_TRUE(slots.untouched(0, 2));
}

// ---- ElementsToSafeArray

TEST(ElementsToArrayTest, NumbersAreTakenFromTheirSlots) {
    const Value array = Value::longs({1, 2, 3});
    const Slots slots(3);
    slots.at<LONG>(0) = 10;
    slots.at<LONG>(1) = -20;
    slots.at<LONG>(2) = 30;
    EXPECT_EQ(ElementsToSafeArray(array.get(), slots.data(), 3), 3);
    const auto* stored = static_cast<const LONG*>(array.array()->pvData);
    EXPECT_THAT(std::vector<LONG>(stored, stored + 3), ElementsAre(10, -20, 30));
}

TEST(ElementsToArrayTest, BytesAreTakenFromTheLowByte) {
    const Value array = Value::bytes({0, 0});
    const Slots slots(2);
    slots.at<ULONGLONG>(0) = 0x1122334455667788;
    slots.at<ULONGLONG>(1) = 0x99;
    EXPECT_EQ(ElementsToSafeArray(array.get(), slots.data(), 2), 2);
    const auto* stored = static_cast<const BYTE*>(array.array()->pvData);
    EXPECT_THAT(std::vector<BYTE>(stored, stored + 2), ElementsAre(0x88, 0x99));
}

TEST(ElementsToArrayTest, StringsAreCopied) {
    const AllocationScope scope;
    {
        const Value array = Value::texts({L"old"});
        const Value text = Value::text(L"new");
        void* slot = text.get().bstrVal;
        EXPECT_EQ(ElementsToSafeArray(array.get(), &slot, 1), 1);
        const BSTR stored = *static_cast<const BSTR*>(array.array()->pvData);
        EXPECT_STREQ(stored, L"new");
        EXPECT_NE(stored, text.get().bstrVal);
    }
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

TEST(ElementsToArrayTest, InterfacesReplaceTheOldReference) {
    FakeObject before;
    FakeObject after;
    {
        const Value array = Value::objects({&before, &before});
        void* slots[] = {&after, nullptr};
        EXPECT_EQ(ElementsToSafeArray(array.get(), slots, 2), 2);
        EXPECT_EQ(before.references(), 0u);
        EXPECT_EQ(after.references(), 1u);
    }
    EXPECT_EQ(after.references(), 0u);
}

TEST(ElementsToArrayTest, FirstSlotFillsTheFirstElementWhateverTheLowerBound) {
    const Value array = Value::longs({0, 0}, 7);
    const Slots slots(2);
    slots.at<LONG>(0) = 1;
    slots.at<LONG>(1) = 2;
    EXPECT_EQ(ElementsToSafeArray(array.get(), slots.data(), 2), 2);
    const auto* stored = static_cast<const LONG*>(array.array()->pvData);
    EXPECT_THAT(std::vector<LONG>(stored, stored + 2), ElementsAre(1, 2));
}

TEST(ElementsToArrayTest, SlotsBeyondTheCapacityAreNotRead) {
    const Value array = Value::longs({7, 8, 9});
    const Slots slots(2);
    slots.at<LONG>(0) = 1;
    slots.at<LONG>(1) = 2;
    EXPECT_EQ(ElementsToSafeArray(array.get(), slots.data(), 2), 2);
    const auto* stored = static_cast<const LONG*>(array.array()->pvData);
    EXPECT_THAT(std::vector<LONG>(stored, stored + 3), ElementsAre(1, 2, 9));
}

TEST(ElementsToArrayTest, FirstFailedStoreGivesZero) {
    const Value array = Value::texts({L"a", L"b"});
    const Value longText = Value::text(std::wstring(1000, L'x'));
    const Value shortText = Value::text(L"short");
    void* slots[] = {shortText.get().bstrVal, longText.get().bstrVal};
    std::size_t size = 0;
    {
        const AllocationScope scope;
        const Value copy = Value::text(std::wstring(1000, L'x'));
        size = scope.survivors().at(0);
    }
    const AllocationScope scope;
    scope->failBlocks(size);
    EXPECT_EQ(ElementsToSafeArray(array.get(), slots, 2), 0);
}

TEST(ElementsToArrayTest, ArrayWithoutElementsTakesNothing) {
    for (const Value& array : arraysWithoutElements(VT_UNKNOWN)) {
        EXPECT_EQ(ElementsToSafeArray(array.get(), nullptr, 4), 0);
    }
    EXPECT_EQ(ElementsToSafeArray(Value::array(VT_VARIANT, 2).get(), nullptr, 2), 0);
}

// ---- SafeArrayToBytes

TEST(ArrayToBytesTest, BytesAreCopiedUpToTheCapacity) {
    const GuardedBuffer bytes(3);
    EXPECT_EQ(SafeArrayToBytes(Value::bytes({1, 2, 3}).get(), bytes.data(), 3), 3);
    EXPECT_EQ(std::memcmp(bytes.data(), "\1\2\3", 3), 0);
}

TEST(ArrayToBytesTest, ShorterArrayLeavesTheRest) {
    const GuardedBuffer bytes(16);
    EXPECT_EQ(SafeArrayToBytes(Value::bytes({1, 2, 3}, 9).get(), bytes.data(), 16), 3);
    EXPECT_EQ(std::memcmp(bytes.data(), "\1\2\3", 3), 0) << "whatever the lower bound is";
    EXPECT_TRUE(bytes.untouched(3, 13));
}

TEST(ArrayToBytesTest, LongerArrayCopiesNothing) {
    const GuardedBuffer bytes(16);
    EXPECT_EQ(SafeArrayToBytes(Value::array(VT_UI1, 17).get(), bytes.data(), 16), 0);
    EXPECT_TRUE(bytes.untouched());
    EXPECT_EQ(SafeArrayToBytes(Value::array(VT_UI1, 16).get(), bytes.data(), 16), 16);
    EXPECT_FALSE(bytes.untouched());
}

TEST(ArrayToBytesTest, CapacityIsSigned) {
    const GuardedBuffer bytes(4);
    EXPECT_EQ(SafeArrayToBytes(Value::bytes({1}).get(), bytes.data(), 0), 0);
    EXPECT_EQ(SafeArrayToBytes(Value::bytes({1}).get(), bytes.data(), -1), 0);
    EXPECT_EQ(SafeArrayToBytes(Value::bytes({1}).get(), bytes.data(), LONG_MIN), 0);
    EXPECT_TRUE(bytes.untouched());
}

TEST(ArrayToBytesTest, ArrayWithoutBytesTouchesNothing) {
    const GuardedBuffer bytes(16);
    for (const Value& array : arraysWithoutElements(VT_UI1)) {
        EXPECT_EQ(SafeArrayToBytes(array.get(), bytes.data(), 16), 0);
    }
    EXPECT_EQ(SafeArrayToBytes(Value::shorts({1, 2}).get(), bytes.data(), 16), 0);
    EXPECT_EQ(SafeArrayToBytes(Value::longs({1, 2}).get(), bytes.data(), 16), 0);
    EXPECT_TRUE(bytes.untouched());
}

// ---- Single bytes

TEST(ByteElementTest, OneByteIsReadAndWritten) {
    const Value array = Value::bytes({1, 2, 3}, 5);
    unsigned char byte = 0;
    EXPECT_EQ(putByteElement(array.get(), 6, 9), S_OK);
    EXPECT_EQ(getByteElement(array.get(), 6, byte), S_OK);
    EXPECT_EQ(byte, 9);
    EXPECT_EQ(getByteElement(array.get(), 5, byte), S_OK);
    EXPECT_EQ(byte, 1) << "its neighbours stay";
}

TEST(ByteElementTest, IndexOutOfBoundsIsRefused) {
    const Value array = Value::bytes({1, 2});
    unsigned char byte = 7;
    for (const LONG index : {-1, 2}) {
        EXPECT_EQ(getByteElement(array.get(), index, byte), DISP_E_BADINDEX);
        EXPECT_EQ(putByteElement(array.get(), index, 9), DISP_E_BADINDEX);
    }
    EXPECT_EQ(byte, 7);
}

TEST(ByteElementTest, OtherValuesAreRefused) {
    std::vector<Value> values = arraysWithoutElements(VT_UI1);
    values.push_back(Value::longs({1}));
    for (const Value& value : values) {
        // An empty array of bytes is one, and has no element 0.
        const bool isEmpty = value.type() == (VT_ARRAY | VT_UI1) && value.get().parray != nullptr &&
                             SafeArrayGetDim(value.get().parray) == 1;
        const HRESULT refusal = isEmpty ? DISP_E_BADINDEX : E_INVALIDARG;
        unsigned char byte = 7;
        EXPECT_EQ(getByteElement(value.get(), 0, byte), refusal);
        EXPECT_EQ(putByteElement(value.get(), 0, 9), refusal);
        EXPECT_EQ(byte, 7);
    }
}

TEST(RoomTest, TheSmallerOfArrayAndLimit) {
    const Value array = Value::longs({1, 2, 3});
    EXPECT_EQ(roomFor(array.get(), 2), 2u);
    EXPECT_EQ(roomFor(array.get(), 3), 3u);
    EXPECT_EQ(roomFor(array.get(), 0xFFFFFFFF), 3u);
    for (const Value& none : arraysWithoutElements(VT_UNKNOWN)) {
        EXPECT_EQ(roomFor(none.get(), 0xFFFFFFFF), 0u);
    }
}

// ---- copyFirstBytes

TEST(FirstBytesTest, ElementsZeroToSevenAreCopied) {
    const GuardedBuffer bytes(8);
    copyFirstBytes(Value::bytes({1, 2, 3, 4, 5, 6, 7, 8, 9}).get(), bytes.data(), 8);
    EXPECT_EQ(std::memcmp(bytes.data(), "\1\2\3\4\5\6\7\10", 8), 0);
}

TEST(FirstBytesTest, MissingElementsAreLeft) {
    const GuardedBuffer bytes(8);
    copyFirstBytes(Value::bytes({1, 2}).get(), bytes.data(), 8);
    EXPECT_EQ(std::memcmp(bytes.data(), "\1\2", 2), 0);
    EXPECT_TRUE(bytes.untouched(2, 6));
}

TEST(FirstBytesTest, IndexesAreThoseOfTheArray) {
    const GuardedBuffer bytes(4);
    copyFirstBytes(Value::bytes({1, 2, 3}, 2).get(), bytes.data(), 4);
    EXPECT_TRUE(bytes.untouched(0, 2));
    EXPECT_EQ(std::memcmp(bytes.data() + 2, "\1\2", 2), 0);
}

TEST(FirstBytesTest, OtherValuesCopyNothing) {
    const GuardedBuffer bytes(8);
    for (const Value& array : arraysWithoutElements(VT_UI1)) {
        copyFirstBytes(array.get(), bytes.data(), 8);
    }
    copyFirstBytes(Value::longs({1, 2}).get(), bytes.data(), 8);
    EXPECT_TRUE(bytes.untouched());
}

}  // namespace
}  // namespace quista::test

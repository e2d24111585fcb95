// Reading one property, embedded objects, and the owners of what comes back.
#include "wmi/property.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "tests/support/allocation_spy.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/library_test.h"
#include "tests/support/log_file.h"
#include "tests/support/work_folder.h"
#include "tests/wmi/fake_object.h"
#include "tests/wmi/value.h"
#include "wmi/query.h"
#include "wmi/text_field.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PropertyTest : public testing::Test {
  protected:
    WorkFolder folder;
    LogFile log;
    FakeObject embedded;
    Stranger stranger;
    FakeObject object;
};

TEST_F(PropertyTest, ReadTakesTheFormerValuesPlace) {
    object.text(L"Text", L"x").number(L"Number", 7);
    const AllocationScope scope;
    UniqueVariant value;
    EXPECT_EQ(getProperty(&object, L"Text", value), S_OK);
    EXPECT_EQ(stringOf(value.get()), L"x");
    EXPECT_EQ(getProperty(&object, L"Number", value), S_OK);
    EXPECT_EQ(value.rawLong(), 7u);
    EXPECT_THAT(scope.survivors(), IsEmpty());
    EXPECT_EQ(getProperty(&object, L"Missing", value), kNotFound);
    EXPECT_EQ(value.type(), VT_EMPTY);
    EXPECT_EQ(value.rawLong(), 0u) << "nothing of the former value is left";
    EXPECT_FALSE(log.exists());
}

TEST_F(PropertyTest, FailureIsLoggedUnderThePlace) {
    object.number(L"Number", 7).set(L"One", Value::bits(VT_I4, 7), S_FALSE);
    UniqueVariant value;
    EXPECT_EQ(getOrLog(&object, L"Number", value, L"Test::Get(Number)"), S_OK);
    EXPECT_EQ(getOrLog(&object, L"One", value, L"Test::Get(One)"), S_FALSE);
    EXPECT_FALSE(log.exists()) << "code 1 is dropped";
    EXPECT_EQ(getOrLog(&object, L"Missing", value, L"Test::Get(Missing)"), kNotFound);
    EXPECT_EQ(getOrLog(nullptr, L"Number", value, L"Test::Get(null)"), E_POINTER);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{"Test::Get(Missing)", WBEM_E_NOT_FOUND},
                                        LogLine{"Test::Get(null)", 0x80004003}));
}

TEST_F(PropertyTest, EmbeddedObjectComesWithAReference) {
    object.set(L"Inner", Value::object(&embedded));
    const ULONG held = embedded.references();
    {
        ComRef<IWbemClassObject> inner;
        EXPECT_EQ(getObjectOrLog(&object, L"Inner", inner, L"Test::Get(Inner)"), S_OK);
        EXPECT_EQ(inner.get(), &embedded);
        EXPECT_EQ(embedded.references(), held + 1);
    }
    EXPECT_EQ(embedded.references(), held);
    EXPECT_FALSE(log.exists());
}

TEST_F(PropertyTest, ValueThatIsNoObjectIsAFailedRead) {
    object.set(L"Null object", Value::object(nullptr)).set(L"Null", Value::bits(VT_NULL));
    object.set(L"Stranger", Value::object(&stranger)).text(L"Text", L"x");
    ComRef<IWbemClassObject> inner;
    for (const wchar_t* property : {L"Null object", L"Null", L"Stranger", L"Text"}) {
        EXPECT_EQ(getObjectOrLog(&object, property, inner, L"Test::Get"), E_POINTER);
        EXPECT_FALSE(inner);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{"Test::Get", 0x80004003}));
    }
    EXPECT_EQ(stranger.references(), 1u);
    EXPECT_EQ(getObjectOrLog(&object, L"Missing", inner, L"Test::Get"), kNotFound);
    EXPECT_THAT(log.take(), ElementsAre(LogLine{"Test::Get", WBEM_E_NOT_FOUND}));
}

class PutTest : public LibraryTest {
  protected:
    PutTest() {
        host.loadText(L"class Item { [key] string Name; uint32 Weight; };\n");
        host.add(MofObject(L"Item").text(L"Name", L"a").number(L"Weight", 1));
        openSession();
    }
};

TEST_F(PutTest, NumberIsWrittenAndReadWithItsType) {
    ComRef<IEnumWbemClassObject> items;
    ComRef<IWbemClassObject> item;
    ASSERT_EQ(enumerateClass(L"Item", items), S_OK);
    ASSERT_EQ(nextInstance(items.get(), item), S_OK);
    EXPECT_EQ(putLong(item.get(), L"Weight", 0xFFFFFFFE), S_OK);
    UniqueVariant value;
    CIMTYPE type = 0;
    EXPECT_EQ(getOrLog(item.get(), L"Weight", value, L"Test::Get(Weight)", &type), S_OK);
    EXPECT_EQ(value.rawLong(), 0xFFFFFFFEu);
    EXPECT_EQ(type, CIM_UINT32);
    EXPECT_EQ(putLong(item.get(), L"Missing", 1), kNotFound);
    EXPECT_EQ(putLong(nullptr, L"Weight", 1), E_POINTER);
    EXPECT_FALSE(log.exists()) << "the caller logs";
}

TEST(StringOfTest, OnlyAStringHasOne) {
    EXPECT_EQ(stringOf(Value::text(L"a\\b").get()), L"a\\b");
    EXPECT_EQ(stringOf(Value::text(std::wstring(L"a\0b", 3)).get()), L"a");
    EXPECT_EQ(stringOf(Value::bits(VT_BSTR).get()), L"");
    EXPECT_EQ(stringOf(Value::bits(VT_NULL).get()), L"");
    EXPECT_EQ(stringOf(Value::bits(VT_I4, 7).get()), L"");
    EXPECT_EQ(stringOf(Value::shorts({'a'}).get()), L"");
}

TEST(UniqueVariantTest, ValueIsZeroUntilOneComesIn) {
    const UniqueVariant value;
    EXPECT_EQ(value.type(), VT_EMPTY);
    EXPECT_EQ(value.rawByte(), 0);
    EXPECT_EQ(value.rawLong(), 0u);
    EXPECT_EQ(value.rawBoolean(), 0);
}

TEST(UniqueVariantTest, NewLowBitsKeepTheType) {
    UniqueVariant value;
    *value.receive() = Value::bits(VT_UI1, 0x1122334455667788).release();
    value.setLong(0xFFFFFFFE);
    EXPECT_EQ(value.type(), VT_UI1);
    EXPECT_EQ(value.get().ullVal, 0x11223344FFFFFFFEu);
}

TEST(UniqueVariantTest, NewLowBitsReplaceAPointer) {
    const AllocationScope scope;
    FakeObject object;
    std::vector<Value> values;
    values.push_back(Value::text(L"x"));
    values.push_back(Value::object(&object));
    values.push_back(Value::bytes({1}));
    for (Value& owned : values) {
        UniqueVariant value;
        *value.receive() = owned.release();
        value.setLong(5);
        EXPECT_EQ(value.type(), VT_I4);
        EXPECT_EQ(value.rawLong(), 5u);
    }
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

TEST(UniqueVariantTest, ValueIsClearedUnlessItIsKept) {
    const AllocationScope scope;
    {
        UniqueVariant cleared;
        *cleared.receive() = Value::text(L"cleared").release();
        UniqueVariant reset;
        *reset.receive() = Value::text(L"reset").release();
        reset.reset();
        EXPECT_EQ(reset.rawLong(), 0u);
        UniqueVariant kept;
        *kept.receive() = Value::text(L"kept").release();
        kept.keepOnPurpose();
    }
    EXPECT_THAT(scope.survivingTexts(), ElementsAre(L"kept"));
}

TEST(ComRefTest, OneReferenceIsOwned) {
    FakeObject object;
    object.AddRef();
    {
        ComRef<IWbemClassObject> first(&object);
        ComRef<IWbemClassObject> second(std::move(first));
        EXPECT_FALSE(first);
        first = std::move(second);
        EXPECT_EQ(first->Release(), 0u);
        object.AddRef();
    }
    EXPECT_EQ(object.references(), 0u);

    object.AddRef();
    ComRef<IWbemClassObject> handedOver(&object);
    EXPECT_EQ(handedOver.release(), &object);
    handedOver = ComRef<IWbemClassObject>(&object);
    handedOver.keepOnPurpose();
    EXPECT_FALSE(handedOver);
    EXPECT_EQ(object.Release(), 0u) << "the reference was kept";
}

TEST(TextFieldTest, TextIsCutSoThatItsTerminatorFits) {
    const GuardedBuffer field(4 * sizeof(wchar_t));
    copyTerminated(field.as<wchar_t>(), 4, L"abcdef");
    EXPECT_STREQ(field.as<wchar_t>(), L"abc");
    copyTerminated(field.as<wchar_t>(), 4, L"xyz");
    EXPECT_STREQ(field.as<wchar_t>(), L"xyz");
    copyTerminated(field.as<wchar_t>(), 4, L"");
    EXPECT_STREQ(field.as<wchar_t>(), L"");
}

TEST(TextFieldTest, MissingTextLeavesTheField) {
    wchar_t field[4] = L"abc";
    copyToField(field, nullptr);
    EXPECT_STREQ(field, L"abc");
    copyToField(field, L"12345");
    EXPECT_STREQ(field, L"123");
}

}  // namespace
}  // namespace quista::test

// Display text of a VARIANT: the text of every type, byte for byte.
#include "wmi/variant_text.h"

#include <cfloat>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "tests/support/allocation_spy.h"
#include "tests/wmi/fake_object.h"
#include "tests/wmi/value.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

/// The text of a value, or nothing when it has none.
std::optional<std::wstring> textOf(VARIANT& value) {
    wchar_t stale[] = L"stale";
    wchar_t* text = stale;
    EXPECT_EQ(VariantToText(&value, &text), text) << "result and out-parameter differ";
    EXPECT_NE(text, stale) << "the out-parameter was left alone";
    if (text == nullptr) return std::nullopt;
    std::wstring result = text;
    std::free(text);
    return result;
}

std::optional<std::wstring> textOf(Value value) {
    return textOf(value.get());
}

// ---- Plain values

TEST(VariantTextTest, NullHasItsOwnText) {
    EXPECT_EQ(textOf(Value::bits(VT_NULL)), L"<null>");
}

TEST(VariantTextTest, ShortIsSignExtended) {
    EXPECT_EQ(textOf(Value::bits(VT_I2, 0)), L"0 (0x0)");
    EXPECT_EQ(textOf(Value::bits(VT_I2, 0x7FFF)), L"32767 (0x7FFF)");
    EXPECT_EQ(textOf(Value::bits(VT_I2, 0xFFFF)), L"-1 (0xFFFFFFFF)");
    EXPECT_EQ(textOf(Value::bits(VT_I2, 0x8000)), L"-32768 (0xFFFF8000)");
    EXPECT_EQ(textOf(Value::bits(VT_I2, 0x12340002)), L"2 (0x2)") << "only 16 bits count";
}

TEST(VariantTextTest, LongIsDecimalAndUpperCaseHexadecimal) {
    EXPECT_EQ(textOf(Value::bits(VT_I4, 43981)), L"43981 (0xABCD)");
    EXPECT_EQ(textOf(Value::bits(VT_I4, -1)), L"-1 (0xFFFFFFFF)");
    EXPECT_EQ(textOf(Value::bits(VT_I4, INT_MIN)), L"-2147483648 (0x80000000)");
}

TEST(VariantTextTest, ByteBelowBlankIsANumber) {
    EXPECT_EQ(textOf(Value::bits(VT_UI1, 0)), L"0 (0x0)");
    EXPECT_EQ(textOf(Value::bits(VT_UI1, 31)), L"31 (0x1F)");
}

TEST(VariantTextTest, ByteFromBlankOnIsAlsoACharacter) {
    EXPECT_EQ(textOf(Value::bits(VT_UI1, 32)), L"' ' (32, 0x20)");
    EXPECT_EQ(textOf(Value::bits(VT_UI1, 'A')), L"'A' (65, 0x41)");
    EXPECT_EQ(textOf(Value::bits(VT_UI1, 0xE4)), L"'\u00E4' (228, 0xE4)");
    EXPECT_EQ(textOf(Value::bits(VT_UI1, 255)), L"'\u00FF' (255, 0xFF)");
}

TEST(VariantTextTest, RealHasFourDecimalsInTenCharacters) {
    EXPECT_EQ(textOf(Value::real32(1.5f)), L"    1.5000");
    EXPECT_EQ(textOf(Value::real32(-0.25f)), L"   -0.2500");
    EXPECT_EQ(textOf(Value::real64(0.0)), L"    0.0000");
    EXPECT_EQ(textOf(Value::real64(1.00006)), L"    1.0001");
    EXPECT_EQ(textOf(Value::real64(123456.789)), L"123456.7890");
}

/// The longest numbers: the digits before the point, their beginning known, then ".0000".
void expectHuge(Value value, const std::wstring& beginning, std::size_t digits) {
    const std::wstring text = textOf(std::move(value)).value_or(L"");
    ASSERT_EQ(text.size(), digits + 5);
    EXPECT_EQ(text.substr(0, beginning.size()), beginning);
    EXPECT_EQ(text.find_first_not_of(L"0123456789", 1), digits);
    EXPECT_EQ(text.substr(digits), L".0000");
}

TEST(VariantTextTest, HugeRealIsWhole) {
    expectHuge(Value::real32(FLT_MAX), L"34028234663852", 39);
    expectHuge(Value::real64(DBL_MAX), L"179769313486231", 309);
    expectHuge(Value::real64(-DBL_MAX), L"-179769313486231", 310);
}

TEST(VariantTextTest, StringIsQuoted) {
    EXPECT_EQ(textOf(Value::text(L"LUN 7")), L"\"LUN 7\"");
    EXPECT_EQ(textOf(Value::text(L"")), L"\"\"");
    EXPECT_EQ(textOf(Value::text(L"say \"x\" \\")), L"\"say \"x\" \\\"") << "nothing is escaped";
    EXPECT_EQ(textOf(Value::bits(VT_BSTR)), L"\"\"") << "a null string is an empty one";
}

TEST(VariantTextTest, LongStringIsWhole) {
    const std::wstring text(5000, L'x');
    EXPECT_EQ(textOf(Value::text(text)), L"\"" + text + L"\"");
}

TEST(VariantTextTest, StringEndsAtItsFirstZero) {
    const std::wstring text(L"ab\0cd", 5);
    EXPECT_EQ(textOf(Value::text(text)), L"\"ab\"");
}

TEST(VariantTextTest, BooleanIsTrueWhenNotZero) {
    EXPECT_EQ(textOf(Value::boolean(VARIANT_TRUE)), L"TRUE");
    EXPECT_EQ(textOf(Value::boolean(1)), L"TRUE");
    EXPECT_EQ(textOf(Value::boolean(VARIANT_FALSE)), L"FALSE");
    EXPECT_EQ(textOf(Value::bits(VT_BOOL, 0x10000)), L"FALSE") << "only 16 bits count";
}

TEST(VariantTextTest, ReferencedStringIsBare) {
    // The value field holds the string itself, not a pointer to one.
    Value value = Value::text(L"LUN 7");
    value.get().vt |= VT_BYREF;
    EXPECT_EQ(textOf(value.get()), L"LUN 7");
    EXPECT_EQ(value.type(), VT_BYREF | VT_BSTR) << "the bit stays on a string";
    value.get().vt = VT_BSTR;

    EXPECT_EQ(textOf(Value::bits(VT_BYREF | VT_BSTR)), L"");
}

// ---- Types without a text, and the rest

TEST(VariantTextTest, SomeTypesHaveNoText) {
    EXPECT_EQ(textOf(Value::bits(VT_DISPATCH)), std::nullopt);
    for (const VARTYPE element : {VT_I4, VT_R4, VT_R8, VT_BSTR, VT_DISPATCH, VT_BOOL, VT_UI1}) {
        EXPECT_EQ(textOf(Value::array(element, 2)), std::nullopt) << "array of type " << element;
        EXPECT_EQ(textOf(Value::array(element, 0)), std::nullopt) << "array of type " << element;
    }
}

TEST(VariantTextTest, OtherTypesAreInvalidEntries) {
    for (const VARTYPE type : {VT_EMPTY, VT_CY, VT_DATE, VT_ERROR, VT_VARIANT, VT_UNKNOWN,
                               VT_DECIMAL, VT_I1, VT_UI2, VT_UI4, VT_I8, VT_UI8, VT_INT, VT_UINT}) {
        VARIANT value{};
        value.vt = type;
        EXPECT_EQ(textOf(value), L"Invalid Entry") << "type " << type;
    }
}

TEST(VariantTextTest, OtherArraysAreInvalidEntries) {
    for (const VARTYPE element :
         {VT_CY, VT_DATE, VT_ERROR, VT_VARIANT, VT_I1, VT_UI2, VT_UI4, VT_I8, VT_UI8}) {
        EXPECT_EQ(textOf(Value::array(element, 1)), L"Invalid Entry") << "of type " << element;
    }
}

TEST(VariantTextTest, OtherReferencesAreInvalidEntries) {
    for (const int type :
         {VT_EMPTY + 0, VT_NULL + 0, VT_I2 + 0, VT_I4 + 0, VT_UI1 + 0, VT_R4 + 0, VT_R8 + 0,
          VT_BOOL + 0, VT_DISPATCH + 0, VT_UNKNOWN + 0, VT_ARRAY | VT_UI1, VT_ARRAY | VT_I4,
          VT_ARRAY | VT_BSTR, VT_ARRAY | VT_UNKNOWN, VT_ARRAY | VT_BOOL}) {
        VARIANT value{};
        value.vt = static_cast<VARTYPE>(VT_BYREF | type);
        EXPECT_EQ(textOf(value), L"Invalid Entry") << "type " << type;
        EXPECT_EQ(value.vt, VT_BYREF | type) << "only character arrays lose the bit";
    }
}

// ---- Arrays of numbers and of objects

TEST(VariantTextTest, NumbersAreJoinedByCommas) {
    EXPECT_EQ(textOf(Value::shorts({7})), L"7");
    EXPECT_EQ(textOf(Value::shorts({1, -2, 0, 32767, -32768})), L"1,-2,0,32767,-32768");
    EXPECT_EQ(textOf(Value::shorts({5, 6}, 3)), L"5,6") << "whatever the lower bound is";
}

TEST(VariantTextTest, EmptyArrayOfNumbersHasItsOwnText) {
    EXPECT_EQ(textOf(Value::shorts({})), L"<empty array>");
    EXPECT_EQ(textOf(Value::bits(VT_ARRAY | VT_I2)), L"<empty array>") << "no array at all";
    EXPECT_EQ(textOf(Value::matrix(VT_I2, 2, 2)), L"<empty array>") << "no row of numbers";
}

TEST(VariantTextTest, ObjectsAreCountedFromTheLowerBound) {
    FakeObject object;
    EXPECT_EQ(textOf(Value::objects({&object, nullptr, &object})),
              L"0 element\t1 element is empty\t2 element\t");
    EXPECT_EQ(textOf(Value::objects({nullptr, &object}, -1)), L"-1 element is empty\t0 element\t");
    EXPECT_EQ(textOf(Value::objects({&object}, 5)), L"5 element\t");
    EXPECT_EQ(object.references(), 0u) << "looking at an element adds no reference";
}

TEST(VariantTextTest, EmptyArrayOfObjectsHasAnotherText) {
    EXPECT_EQ(textOf(Value::objects({})), L"<empty>");
    EXPECT_EQ(textOf(Value::bits(VT_ARRAY | VT_UNKNOWN)), L"<empty>");
}

// ---- Character arrays

std::optional<std::wstring> charactersOf(const std::vector<SHORT>& elements, LONG lower = 0) {
    Value value = Value::shorts(elements, lower).byReference();
    const auto text = textOf(value.get());
    EXPECT_EQ(value.type(), VT_ARRAY | VT_I2) << "the bit has to go, so that the clear frees";
    return text;
}

TEST(VariantTextTest, PrintableCharactersAreTheText) {
    EXPECT_EQ(charactersOf({'L', 'U', 'N', ' ', '7'}), L"LUN 7");
    EXPECT_EQ(charactersOf({'a', 'b'}, 4), L"ab");
    EXPECT_EQ(charactersOf({0x20AC, 0x7F, 0x20}), L"\u20AC\u007F ");
}

TEST(VariantTextTest, ZeroCharactersAddNothing) {
    EXPECT_EQ(charactersOf({'a', 0, 'b', 0, 0}), L"ab");
    EXPECT_EQ(charactersOf({0, 0, 0}), L"") << "all zero is printable";
}

TEST(VariantTextTest, ControlCharacterMakesTheTextHexadecimal) {
    EXPECT_EQ(charactersOf({0x41, 0x01, 0x00}), L"41:01");
    EXPECT_EQ(charactersOf({0x1F}), L"1f");
    EXPECT_EQ(charactersOf({0x01, 0x41}), L"01:41");
    EXPECT_EQ(charactersOf({'a', 0, 9, 0, 0, 'b', 0}), L"61:00:09:00:00:62")
        << "only zeros at the end are cut";
}

TEST(VariantTextTest, HexadecimalFormShowsTheLowByte) {
    EXPECT_EQ(charactersOf({0x1234, 0x0A, static_cast<SHORT>(0xFFFE)}), L"34:0a:fe");
    EXPECT_EQ(charactersOf({0x02, 0x4100, 0}), L"02:00") << "only a zero element is cut";
}

TEST(VariantTextTest, NegativeCharacterIsPrintable) {
    EXPECT_EQ(charactersOf({static_cast<SHORT>(0xFF41), 'b'}), L"\uFF41b");
}

TEST(VariantTextTest, EmptyCharacterArrayHasTheTextOfEmptyObjects) {
    EXPECT_EQ(charactersOf({}), L"<empty>");
    Value none = Value::bits(VT_BYREF | VT_ARRAY | VT_I2);
    EXPECT_EQ(textOf(none.get()), L"<empty>");
    EXPECT_EQ(none.type(), VT_ARRAY | VT_I2);
}

TEST(VariantTextTest, LongCharacterArrayIsWhole) {
    EXPECT_EQ(charactersOf(std::vector<SHORT>(3000, 'x')), std::wstring(3000, L'x'));
}

// ---- Quoted and bare

TEST(VariantTextTest, BareTextLeavesTypeAndOwnership) {
    const AllocationScope scope;
    {
        UniqueVariant value;
        *value.receive() = Value::text(L"LUN 7").release();
        EXPECT_STREQ(bareText(value).get(), L"LUN 7");
        EXPECT_EQ(value.type(), VT_BSTR);
        EXPECT_STREQ(quotedText(value).get(), L"\"LUN 7\"");

        *value.receive() = Value::shorts({'a', 1}).release();
        EXPECT_STREQ(bareText(value).get(), L"61:01");
        EXPECT_EQ(value.type(), VT_ARRAY | VT_I2);
        EXPECT_STREQ(quotedText(value).get(), L"97,1");
    }
    EXPECT_TRUE(scope.survivors().empty());
}

}  // namespace
}  // namespace quista::test

#include "simulator/repository/cim_value.h"

#include <gtest/gtest.h>
#include <limits>

#include "simulator/repository/cim_instance.h"

namespace quista::test {
namespace {

using namespace quista::simulator;

CimDeclaredType scalar(CimType type) {
    return {type, false, {}};
}

CimInstance instanceOf(const std::wstring& className, std::wstring ancestor = {}) {
    auto definition = std::make_shared<CimClass>();
    definition->name = className;
    if (!ancestor.empty()) definition->ancestors = {std::move(ancestor)};
    CimProperty property;
    property.name = L"Text";
    definition->properties.push_back(property);
    return CimInstance(definition);
}

struct IntegerRange {
    CimType type;
    std::uint64_t largest;
    std::uint64_t smallestMagnitude;  ///< of negative numbers
};

class CimIntegerTest : public ::testing::TestWithParam<IntegerRange> {};

TEST_P(CimIntegerTest, HoldsItsRangeAndNothingBeyond) {
    const auto [type, largest, smallest] = GetParam();
    EXPECT_TRUE(integerOfType(type, false, largest).has_value());
    EXPECT_TRUE(integerOfType(type, true, smallest).has_value());
    if (largest != std::numeric_limits<std::uint64_t>::max()) {
        EXPECT_FALSE(integerOfType(type, false, largest + 1).has_value());
    }
    EXPECT_FALSE(integerOfType(type, true, smallest + 1).has_value());
}

TEST_P(CimIntegerTest, FitsWhatItHolds) {
    const auto [type, largest, smallest] = GetParam();
    EXPECT_TRUE(valueFits(scalar(type), *integerOfType(type, false, largest)));
    EXPECT_TRUE(valueFits(scalar(type), *integerOfType(type, true, smallest)));
    EXPECT_FALSE(valueFits(scalar(type), CimValue::ofText(L"1")));
    EXPECT_FALSE(valueFits({type, true, {}}, *integerOfType(type, false, 1)));
}

INSTANTIATE_TEST_SUITE_P(
    AllTypes, CimIntegerTest,
    ::testing::Values(IntegerRange{CimType::sint8, 127, 128}, IntegerRange{CimType::uint8, 255, 0},
                      IntegerRange{CimType::sint16, 32767, 32768},
                      IntegerRange{CimType::uint16, 65535, 0},
                      IntegerRange{CimType::char16, 65535, 0},
                      IntegerRange{CimType::sint32, 2147483647, 2147483648},
                      IntegerRange{CimType::uint32, 4294967295, 0},
                      IntegerRange{CimType::sint64, 9223372036854775807U, 9223372036854775808U},
                      IntegerRange{CimType::uint64, std::numeric_limits<std::uint64_t>::max(), 0}));

TEST(CimValueTest, StartsAsNullWhichFitsEveryType) {
    EXPECT_TRUE(CimValue().isNull());
    EXPECT_TRUE(valueFits(scalar(CimType::uint8), CimValue()));
    EXPECT_TRUE(valueFits({CimType::object, true, L"X"}, CimValue()));
}

TEST(CimValueTest, KeepsTheSmallestSignedNumber) {
    const auto value = integerOfType(CimType::sint64, true, 9223372036854775808U);
    ASSERT_TRUE(value);
    EXPECT_EQ(*value->asSigned(), std::numeric_limits<std::int64_t>::min());
}

TEST(CimValueTest, NoOtherTypeHoldsIntegers) {
    EXPECT_FALSE(integerOfType(CimType::string, false, 1));
    EXPECT_FALSE(integerOfType(CimType::real64, false, 1));
    EXPECT_FALSE(integerOfType(CimType::boolean, false, 1));
}

TEST(CimValueTest, RealsAreFiniteAndInRange) {
    EXPECT_TRUE(valueFits(scalar(CimType::real64), CimValue::ofReal(1e300)));
    EXPECT_FALSE(valueFits(scalar(CimType::real32), CimValue::ofReal(1e300)));
    EXPECT_FALSE(valueFits(scalar(CimType::real64),
                           CimValue::ofReal(std::numeric_limits<double>::infinity())));
    EXPECT_FALSE(valueFits(scalar(CimType::real64),
                           CimValue::ofReal(std::numeric_limits<double>::quiet_NaN())));
}

TEST(CimValueTest, ArraysHoldElementsOfTheirTypeOnly) {
    const CimDeclaredType bytes{CimType::uint8, true, {}};
    EXPECT_TRUE(valueFits(bytes, CimValue::ofArray({})));
    EXPECT_TRUE(valueFits(bytes, CimValue::ofArray({CimValue::ofUnsigned(255)})));
    EXPECT_FALSE(valueFits(bytes, CimValue::ofArray({CimValue::ofUnsigned(256)})));
    EXPECT_FALSE(valueFits(bytes, CimValue::ofArray({CimValue()})));
    EXPECT_FALSE(valueFits(scalar(CimType::uint8), CimValue::ofArray({})));
}

TEST(CimValueTest, EmbeddedObjectsFitTheirClassAndItsAncestors) {
    const CimValue value = CimValue::ofObject(instanceOf(L"Dog", L"Animal"));
    EXPECT_TRUE(valueFits({CimType::object, false, L"dog"}, value));
    EXPECT_TRUE(valueFits({CimType::object, false, L"ANIMAL"}, value));
    EXPECT_TRUE(valueFits({CimType::object, false, L""}, value));
    EXPECT_FALSE(valueFits({CimType::object, false, L"Cat"}, value));
}

TEST(CimValueTest, EmbeddedObjectsAreCopiesAndComparedByContent) {
    CimInstance original = instanceOf(L"X");
    const CimValue value = CimValue::ofObject(original);
    EXPECT_EQ(value, CimValue::ofObject(original));
    ASSERT_EQ(original.set(L"text", CimValue::ofText(L"changed")), CimInstance::SetResult::done);
    EXPECT_TRUE((*value.asObject())->find(L"Text")->isNull());
    EXPECT_FALSE(value == CimValue::ofObject(original));
}

TEST(CimValueTest, TypeNamesReadBack) {
    for (const CimType type : {CimType::sint8, CimType::uint64, CimType::real32, CimType::char16,
                               CimType::datetime, CimType::object})
        EXPECT_EQ(typeNamed(typeName(type)), type);
    EXPECT_EQ(typeNamed(L"UINT32"), CimType::uint32);
    EXPECT_FALSE(typeNamed(L"int"));
    EXPECT_FALSE(typeNamed(L""));
}

TEST(CimInstanceTest, RefusesUnknownPropertiesAndWrongTypes) {
    CimInstance instance = instanceOf(L"X");
    EXPECT_EQ(instance.set(L"Other", CimValue()), CimInstance::SetResult::unknownProperty);
    EXPECT_EQ(instance.set(L"Text", CimValue::ofBoolean(true)), CimInstance::SetResult::wrongType);
    EXPECT_EQ(instance.find(L"Other"), nullptr);
    EXPECT_TRUE(instance.find(L"TEXT")->isNull());
}

}  // namespace
}  // namespace quista::test

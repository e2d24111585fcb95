// IWbemClassObject::Get: every type, NULL, system properties.
#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

using simulator::LiveObjects;

constexpr const wchar_t* kTypesMof =
    LR"(
class Inner { uint8 Number; };
class Types
{
    [key] string Name;
    sint8 S8; uint8 U8; sint16 S16; uint16 U16; sint32 S32; uint32 U32; sint64 S64; uint64 U64;
    real32 R32; real64 R64; boolean Truth; char16 Letter; string Words; datetime Moment;
    Types ref Other; Inner Part;
    sint8 S8s[]; uint8 U8s[]; sint16 S16s[]; uint16 U16s[]; sint32 S32s[]; uint32 U32s[];
    sint64 S64s[]; uint64 U64s[]; real32 R32s[]; real64 R64s[]; boolean Truths[]; char16 Letters[];
    string Lines[]; Inner Parts[];
};
instance of Types { Name = "null"; };
instance of Types
{
    Name = "full";
    S8 = -8; U8 = 200; S16 = -300; U16 = 65535; S32 = -70000; U32 = 4294967295;
    S64 = -9000000000; U64 = 18446744073709551615; R32 = 1.5; R64 = -2.25; Truth = TRUE;
    Letter = 65; Words = "text"; Moment = "20240102030405.000000+000";
    Other = "Types.Name=\"null\""; Part = instance of Inner { Number = 5; };
    S8s = {-1, 2}; U8s = {1, 255}; S16s = {-1, 2}; U16s = {1, 65535}; S32s = {-1, 2};
    U32s = {1, 4294967295}; S64s = {-1, 2}; U64s = {1, 18446744073709551615}; R32s = {1.5};
    R64s = {2.5, 3.5}; Truths = {TRUE, FALSE}; Letters = {65, 66}; Lines = {"a", ""};
    Parts = {instance of Inner {Number = 6;}, instance of Inner {Number = 7;}};
};
)";

class GetTest : public HostTest {
  protected:
    GetTest() {
        load(kTypesMof);
        full_ = object(L"Types.Name=\"full\"");
    }

    OwnedVariant value(const wchar_t* property) { return get(*full_, property); }

    /// Property of an array of `vt`, with its element at `index` as a VARIANT.
    OwnedVariant element(const wchar_t* property, LONG index, VARTYPE vt) {
        OwnedVariant array = value(property);
        OwnedVariant element;
        EXPECT_EQ(array->vt, VT_ARRAY | vt) << property;
        EXPECT_EQ(SafeArrayGetDim(array->parray), 1U);
        EXPECT_EQ(SafeArrayGetElement(array->parray, &index, &element->bVal), S_OK);
        element->vt = vt;
        return element;
    }

    CIMTYPE typeOf(const wchar_t* property) {
        CIMTYPE type = 0;
        EXPECT_EQ(full_->Get(property, 0, nullptr, &type, nullptr), S_OK);
        return type;
    }

    Object full_;
};

TEST_F(GetTest, Integers_ComeInTheTypesOfWmi) {
    EXPECT_EQ(value(L"S8")->vt, VT_I2);
    EXPECT_EQ(value(L"S8")->iVal, -8);
    EXPECT_EQ(value(L"U8")->vt, VT_UI1);
    EXPECT_EQ(value(L"U8")->bVal, 200);
    EXPECT_EQ(value(L"S16")->vt, VT_I2);
    EXPECT_EQ(value(L"S16")->iVal, -300);
    EXPECT_EQ(value(L"U16")->vt, VT_I4);
    EXPECT_EQ(value(L"U16")->lVal, 65535);
    EXPECT_EQ(value(L"S32")->vt, VT_I4);
    EXPECT_EQ(value(L"S32")->lVal, -70000);
    EXPECT_EQ(value(L"U32")->vt, VT_I4);
    EXPECT_EQ(value(L"U32")->lVal, -1);
    EXPECT_EQ(value(L"Letter")->vt, VT_I2);
    EXPECT_EQ(value(L"Letter")->iVal, 65);
}

TEST_F(GetTest, LongIntegers_ComeAsDecimalText) {
    OwnedVariant negative = value(L"S64");
    OwnedVariant positive = value(L"U64");
    EXPECT_EQ(textOf(negative), L"-9000000000");
    EXPECT_EQ(textOf(positive), L"18446744073709551615");
}

TEST_F(GetTest, RealsAndBooleans) {
    EXPECT_EQ(value(L"R32")->vt, VT_R4);
    EXPECT_EQ(value(L"R32")->fltVal, 1.5F);
    EXPECT_EQ(value(L"R64")->vt, VT_R8);
    EXPECT_EQ(value(L"R64")->dblVal, -2.25);
    EXPECT_EQ(value(L"Truth")->vt, VT_BOOL);
    EXPECT_EQ(value(L"Truth")->boolVal, VARIANT_TRUE);
}

TEST_F(GetTest, Texts_ComeAsBstr) {
    OwnedVariant words = value(L"Words");
    OwnedVariant moment = value(L"Moment");
    OwnedVariant other = value(L"Other");
    EXPECT_EQ(textOf(words), L"text");
    EXPECT_EQ(SysStringLen(words->bstrVal), 4U);
    EXPECT_EQ(textOf(moment), L"20240102030405.000000+000");
    EXPECT_EQ(textOf(other), L"Types.Name=\"null\"");
}

TEST_F(GetTest, EmbeddedObject_ComesAsACopyOfItsOwn) {
    OwnedVariant part = value(L"Part");
    ASSERT_EQ(part->vt, VT_UNKNOWN);
    EXPECT_EQ(host().liveObjects().objects, 2U);
    void* found = nullptr;
    ASSERT_EQ(part->punkVal->QueryInterface(IID_IWbemClassObject, &found), S_OK);
    const Object inner(static_cast<IWbemClassObject*>(found));
    OwnedVariant nine = variantOf(9);
    EXPECT_EQ(inner->Put(L"Number", 0, nine.get(), 0), S_OK);
    OwnedVariant changed = get(*inner, L"Number");
    EXPECT_EQ(changed->bVal, 9);

    OwnedVariant again = value(L"Part");
    OwnedVariant number = get(*static_cast<IWbemClassObject*>(again->punkVal), L"Number");
    EXPECT_EQ(number->bVal, 5);
}

TEST_F(GetTest, Arrays_HaveTheElementTypeOfTheScalars) {
    EXPECT_EQ(element(L"S8s", 0, VT_I2)->iVal, -1);
    EXPECT_EQ(element(L"U8s", 1, VT_UI1)->bVal, 255);
    EXPECT_EQ(element(L"S16s", 0, VT_I2)->iVal, -1);
    EXPECT_EQ(element(L"U16s", 1, VT_I4)->lVal, 65535);
    EXPECT_EQ(element(L"S32s", 0, VT_I4)->lVal, -1);
    EXPECT_EQ(element(L"U32s", 1, VT_I4)->lVal, -1);
    EXPECT_EQ(element(L"R32s", 0, VT_R4)->fltVal, 1.5F);
    EXPECT_EQ(element(L"R64s", 1, VT_R8)->dblVal, 3.5);
    EXPECT_EQ(element(L"Truths", 0, VT_BOOL)->boolVal, VARIANT_TRUE);
    EXPECT_EQ(element(L"Truths", 1, VT_BOOL)->boolVal, VARIANT_FALSE);
    EXPECT_EQ(element(L"Letters", 1, VT_I2)->iVal, 66);
    OwnedVariant text = element(L"U64s", 1, VT_BSTR);
    EXPECT_EQ(textOf(text), L"18446744073709551615");
    OwnedVariant negative = element(L"S64s", 0, VT_BSTR);
    EXPECT_EQ(textOf(negative), L"-1");
    OwnedVariant line = element(L"Lines", 0, VT_BSTR);
    EXPECT_EQ(textOf(line), L"a");
}

TEST_F(GetTest, ArrayOfObjects_CountsEachWhileItIsHeld) {
    {
        OwnedVariant part = element(L"Parts", 1, VT_UNKNOWN);
        OwnedVariant number = get(*static_cast<IWbemClassObject*>(part->punkVal), L"Number");
        EXPECT_EQ(number->bVal, 7);
        EXPECT_EQ(host().liveObjects().objects, 2U);
    }
    EXPECT_EQ(host().liveObjects().objects, 1U);
}

TEST_F(GetTest, CimTypes_ArrayHasTheFlag) {
    EXPECT_EQ(typeOf(L"S8"), CIM_SINT8);
    EXPECT_EQ(typeOf(L"U16"), CIM_UINT16);
    EXPECT_EQ(typeOf(L"U64"), CIM_UINT64);
    EXPECT_EQ(typeOf(L"Part"), CIM_OBJECT);
    EXPECT_EQ(typeOf(L"Other"), CIM_REFERENCE);
    EXPECT_EQ(typeOf(L"U8s"), CIM_FLAG_ARRAY | CIM_UINT8);
    EXPECT_EQ(typeOf(L"Parts"), CIM_FLAG_ARRAY | CIM_OBJECT);
}

TEST_F(GetTest, NoValue_IsNullWithTheRightType) {
    const Object empty = object(L"Types.Name=\"null\"");
    for (const wchar_t* property : {L"U32", L"U64", L"Words", L"Part", L"U8s", L"Parts"}) {
        OwnedVariant none;
        CIMTYPE type = 0;
        EXPECT_EQ(empty->Get(property, 0, none.get(), &type, nullptr), S_OK);
        EXPECT_EQ(none->vt, VT_NULL) << property;
        EXPECT_EQ(type, typeOf(property)) << property;
    }
}

TEST_F(GetTest, UnknownName_NotFound_LeavesTheVariantAlone) {
    VARIANT value{};
    value.vt = VT_I4;
    value.lVal = 77;
    EXPECT_EQ(full_->Get(L"Nothing", 0, &value, nullptr, nullptr), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(full_->Get(L"__NOTHING", 0, &value, nullptr, nullptr), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(value.vt, VT_I4);
    EXPECT_EQ(value.lVal, 77);
}

TEST_F(GetTest, NameInOtherCase_IsFound) {
    EXPECT_EQ(value(L"u8")->bVal, 200);
}

TEST_F(GetTest, BadArguments_InvalidParameter) {
    VARIANT value{};
    EXPECT_EQ(full_->Get(nullptr, 0, &value, nullptr, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(full_->Get(L"U8", 1, &value, nullptr, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(full_->Get(L"U8", 0, nullptr, nullptr, nullptr), S_OK);
}

TEST_F(GetTest, VariantIsOverwritten_NotCleared) {
    VARIANT value{};
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(L"kept by the caller");
    BSTR text = value.bstrVal;
    EXPECT_EQ(full_->Get(L"U8", 0, &value, nullptr, nullptr), S_OK);
    EXPECT_EQ(value.vt, VT_UI1);
    EXPECT_STREQ(text, L"kept by the caller");
    SysFreeString(text);
}

TEST_F(GetTest, SystemProperties_OfAnInstance) {
    loadSample();
    const Object disk = object(L"FastDisk.Name=\"second\"");
    OwnedVariant className = get(*disk, L"__class");
    OwnedVariant superclass = get(*disk, L"__SUPERCLASS");
    OwnedVariant dynasty = get(*disk, L"__DYNASTY");
    OwnedVariant relative = get(*disk, L"__RELPATH");
    OwnedVariant nameSpace = get(*disk, L"__NAMESPACE");
    OwnedVariant path = get(*disk, L"__PATH");
    EXPECT_EQ(textOf(className), L"FastDisk");
    EXPECT_EQ(textOf(superclass), L"Disk");
    EXPECT_EQ(textOf(dynasty), L"Device");
    EXPECT_EQ(textOf(relative), L"FastDisk.Name=\"second\"");
    EXPECT_EQ(textOf(nameSpace), L"root\\wmi");
    EXPECT_EQ(textOf(path), L"\\\\SIMULATED\\root\\wmi:FastDisk.Name=\"second\"");
    EXPECT_EQ(get(*disk, L"__GENUS")->lVal, WBEM_GENUS_INSTANCE);
    EXPECT_EQ(get(*disk, L"__PROPERTY_COUNT")->lVal, 8);
    OwnedVariant derivation = get(*disk, L"__DERIVATION");
    EXPECT_EQ(derivation->vt, VT_ARRAY | VT_BSTR);
    EXPECT_EQ(object(textOf(path).c_str()) != nullptr, true);
}

TEST_F(GetTest, SystemProperties_OfAnEmbeddedObject_HaveNoPath) {
    OwnedVariant part = value(L"Part");
    auto& inner = *static_cast<IWbemClassObject*>(part->punkVal);
    OwnedVariant className = get(inner, L"__CLASS");
    EXPECT_EQ(textOf(className), L"Inner");
    EXPECT_EQ(get(inner, L"__PATH")->vt, VT_NULL);
    EXPECT_EQ(get(inner, L"__RELPATH")->vt, VT_NULL);
    EXPECT_EQ(get(inner, L"__SERVER")->vt, VT_NULL);
}

TEST_F(GetTest, ClassObject_GivesDefaults) {
    loadSample();
    const Object definition = object(L"Disk");
    EXPECT_EQ(get(*definition, L"State")->lVal, 7);
    EXPECT_EQ(get(*definition, L"Size")->vt, VT_NULL);
    EXPECT_EQ(get(*definition, L"__RELPATH")->vt, VT_BSTR);
}

TEST_F(GetTest, Flavor_TellsWhereThePropertyComesFrom) {
    loadSample();
    const Object disk = object(L"Disk.Name=\"first\"");
    LONG flavor = -1;
    EXPECT_EQ(disk->Get(L"Size", 0, nullptr, nullptr, &flavor), S_OK);
    EXPECT_EQ(flavor, WBEM_FLAVOR_ORIGIN_LOCAL);
    EXPECT_EQ(disk->Get(L"State", 0, nullptr, nullptr, &flavor), S_OK);
    EXPECT_EQ(flavor, WBEM_FLAVOR_ORIGIN_PROPAGATED);
    EXPECT_EQ(disk->Get(L"__CLASS", 0, nullptr, nullptr, &flavor), S_OK);
    EXPECT_EQ(flavor, WBEM_FLAVOR_ORIGIN_SYSTEM);
}

TEST_F(GetTest, RemovedProperty_NotFound) {
    EXPECT_TRUE(host().removeProperty(L"root\\wmi", L"Types", L"U32"));
    const Object later = object(L"Types.Name=\"full\"");
    EXPECT_EQ(later->Get(L"U32", 0, nullptr, nullptr, nullptr), wbem(WBEM_E_NOT_FOUND));
    EXPECT_FALSE(host().removeProperty(L"root\\wmi", L"Types", L"U32"));
}

}  // namespace
}  // namespace quista::test

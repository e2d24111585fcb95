// IWbemClassObject::Put and Delete.
#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

constexpr const wchar_t* kTargetMof =
    LR"(
class Inner { uint8 Number; };
class OtherInner { uint8 Number; };
class Target
{
    [key] string Name;
    sint8 S8; uint8 U8; sint16 S16; uint16 U16; sint32 S32; uint32 U32 = 3; sint64 S64; uint64 U64;
    real32 R32; real64 R64; boolean Truth; char16 Letter; string Words; datetime Moment;
    Inner Part; uint8 Bytes[]; uint32 Longs[]; uint64 Ids[]; string Lines[]; Inner Parts[];
};
instance of Target { Name = "one"; U8 = 1; };
)";

class PutTest : public HostTest {
  protected:
    PutTest() {
        load(kTargetMof);
        target_ = object(L"Target.Name=\"one\"");
    }

    HRESULT put(const wchar_t* property, OwnedVariant value, CIMTYPE type = 0) {
        return target_->Put(property, 0, value.get(), type);
    }

    Object target_;
};

OwnedVariant shortOf(SHORT number) {
    OwnedVariant value;
    value->vt = VT_I2;
    value->iVal = number;
    return value;
}

OwnedVariant doubleOf(double number) {
    OwnedVariant value;
    value->vt = VT_R8;
    value->dblVal = number;
    return value;
}

OwnedVariant booleanOf(bool truth) {
    OwnedVariant value;
    value->vt = VT_BOOL;
    value->boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
    return value;
}

OwnedVariant unknownOf(IUnknown* object) {
    OwnedVariant value;
    value->vt = VT_UNKNOWN;
    value->punkVal = object;
    if (object != nullptr) object->AddRef();
    return value;
}

OwnedVariant arrayOf(VARTYPE vt, const std::vector<void*>& elements) {
    OwnedVariant array;
    array->parray = SafeArrayCreateVector(vt, 0, static_cast<ULONG>(elements.size()));
    array->vt = static_cast<VARTYPE>(VT_ARRAY | vt);
    LONG index = 0;
    for (void* element : elements) {
        EXPECT_EQ(SafeArrayPutElement(array->parray, &index, element), S_OK);
        ++index;
    }
    return array;
}

TEST_F(PutTest, Integers_OfTheRightType_AreStored) {
    EXPECT_EQ(put(L"S8", shortOf(-128)), S_OK);
    EXPECT_EQ(get(*target_, L"S8")->iVal, -128);
    EXPECT_EQ(put(L"u8", variantOf(255)), S_OK);
    EXPECT_EQ(get(*target_, L"U8")->bVal, 255);
    EXPECT_EQ(put(L"U16", variantOf(65535)), S_OK);
    EXPECT_EQ(get(*target_, L"U16")->lVal, 65535);
    EXPECT_EQ(put(L"S32", variantOf(-5)), S_OK);
    EXPECT_EQ(get(*target_, L"S32")->lVal, -5);
    EXPECT_EQ(put(L"U32", variantOf(-1)), S_OK);
    EXPECT_EQ(get(*target_, L"U32")->lVal, -1);
    EXPECT_EQ(put(L"Letter", shortOf(-1)), S_OK);
    EXPECT_EQ(get(*target_, L"Letter")->iVal, -1);
}

TEST_F(PutTest, Integers_OutOfRange_TypeMismatch) {
    EXPECT_EQ(put(L"S8", shortOf(128)), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"U8", variantOf(256)), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"U16", variantOf(-1)), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"S16", variantOf(40000)), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(get(*target_, L"U8")->bVal, 1);
}

TEST_F(PutTest, UnsignedLong_TakesDoubleAndText_RefusesShort) {
    EXPECT_EQ(put(L"U32", doubleOf(4294967295.0)), S_OK);
    EXPECT_EQ(get(*target_, L"U32")->lVal, -1);
    EXPECT_EQ(put(L"U32", doubleOf(6)), S_OK);
    EXPECT_EQ(get(*target_, L"U32")->lVal, 6);
    EXPECT_EQ(put(L"U32", variantOf(L"8")), S_OK);
    EXPECT_EQ(get(*target_, L"U32")->lVal, 8);
    EXPECT_EQ(put(L"U32", shortOf(5)), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"U32", doubleOf(5e9)), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"U32", variantOf(L"word")), wbem(WBEM_E_TYPE_MISMATCH));
}

TEST_F(PutTest, LongLong_TakesDecimalTextOnly) {
    EXPECT_EQ(put(L"U64", variantOf(L"18446744073709551615")), S_OK);
    OwnedVariant biggest = get(*target_, L"U64");
    EXPECT_EQ(textOf(biggest), L"18446744073709551615");
    EXPECT_EQ(put(L"S64", variantOf(L"-9223372036854775808")), S_OK);
    OwnedVariant smallest = get(*target_, L"S64");
    EXPECT_EQ(textOf(smallest), L"-9223372036854775808");
    for (const wchar_t* text : {L"", L"-", L"-1", L"0x10", L"1 ", L"18446744073709551616"}) {
        EXPECT_EQ(put(L"U64", variantOf(text)), wbem(WBEM_E_TYPE_MISMATCH)) << text;
    }
    EXPECT_EQ(put(L"S64", variantOf(L"9223372036854775808")), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"U64", variantOf(5)), wbem(WBEM_E_TYPE_MISMATCH));
}

TEST_F(PutTest, RealsBooleansAndTexts) {
    EXPECT_EQ(put(L"R64", doubleOf(2.5)), S_OK);
    EXPECT_EQ(get(*target_, L"R64")->dblVal, 2.5);
    EXPECT_EQ(put(L"R32", variantOf(3)), S_OK);
    EXPECT_EQ(get(*target_, L"R32")->fltVal, 3.0F);
    EXPECT_EQ(put(L"Truth", booleanOf(true)), S_OK);
    EXPECT_EQ(get(*target_, L"Truth")->boolVal, VARIANT_TRUE);
    EXPECT_EQ(put(L"Words", variantOf(L"new")), S_OK);
    OwnedVariant words = get(*target_, L"Words");
    EXPECT_EQ(textOf(words), L"new");
    OwnedVariant noText;
    noText->vt = VT_BSTR;
    EXPECT_EQ(put(L"Words", std::move(noText)), S_OK);
    OwnedVariant empty = get(*target_, L"Words");
    EXPECT_EQ(textOf(empty), L"");
}

TEST_F(PutTest, NullPointerOrNullVariant_MakeThePropertyNull) {
    EXPECT_EQ(target_->Put(L"U8", 0, nullptr, 0), S_OK);
    EXPECT_EQ(get(*target_, L"U8")->vt, VT_NULL);
    OwnedVariant none;
    none->vt = VT_NULL;
    EXPECT_EQ(put(L"U32", std::move(none)), S_OK);
    EXPECT_EQ(get(*target_, L"U32")->vt, VT_NULL);
}

TEST_F(PutTest, EmptyVariant_TypeMismatch) {
    EXPECT_EQ(put(L"U8", {}), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"Words", {}), wbem(WBEM_E_TYPE_MISMATCH));
}

TEST_F(PutTest, CimType_ZeroOrTheDeclaredOne_OthersRefused) {
    EXPECT_EQ(put(L"U8", variantOf(2), CIM_UINT8), S_OK);
    EXPECT_EQ(put(L"U8", variantOf(2), CIM_UINT32), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"U64", variantOf(L"7"), CIM_UINT64), S_OK);
}

TEST_F(PutTest, UnknownSystemAndKeyProperties_AreRefused) {
    EXPECT_EQ(put(L"Nothing", variantOf(1)), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(put(L"__CLASS", variantOf(L"x")), wbem(WBEM_E_READ_ONLY));
    EXPECT_EQ(put(L"Name", variantOf(L"two")), wbem(WBEM_E_READ_ONLY));
}

TEST_F(PutTest, KeyOfASpawnedInstance_CanBeSet) {
    const Object fresh = spawn(L"Target");
    OwnedVariant name = variantOf(L"two");
    EXPECT_EQ(fresh->Put(L"Name", 0, name.get(), 0), S_OK);
}

TEST_F(PutTest, BadArguments_InvalidParameter) {
    EXPECT_EQ(target_->Put(nullptr, 0, nullptr, 0), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(target_->Put(L"U8", 1, nullptr, 0), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(PutTest, ClassObject_NotSupported) {
    EXPECT_EQ(object(L"Target")->Put(L"U8", 0, nullptr, 0), wbem(WBEM_E_NOT_SUPPORTED));
}

TEST_F(PutTest, EmbeddedObject_IsCopied) {
    const Object inner = spawn(L"Inner");
    OwnedVariant number = variantOf(4);
    ASSERT_EQ(inner->Put(L"Number", 0, number.get(), 0), S_OK);
    EXPECT_EQ(put(L"Part", unknownOf(inner.get())), S_OK);
    OwnedVariant later = variantOf(5);
    ASSERT_EQ(inner->Put(L"Number", 0, later.get(), 0), S_OK);
    OwnedVariant part = get(*target_, L"Part");
    ASSERT_EQ(part->vt, VT_UNKNOWN);
    EXPECT_EQ(get(*static_cast<IWbemClassObject*>(part->punkVal), L"Number")->bVal, 4);
}

TEST_F(PutTest, EmbeddedObject_OfAnotherClassOrForeign_TypeMismatch) {
    const Object other = spawn(L"OtherInner");
    EXPECT_EQ(put(L"Part", unknownOf(other.get())), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"Part", unknownOf(&wmi())), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"Part", unknownOf(object(L"Inner").get())), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"Part", variantOf(5)), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"U8", unknownOf(other.get())), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"Part", unknownOf(nullptr)), S_OK);
    EXPECT_EQ(get(*target_, L"Part")->vt, VT_NULL);
}

TEST_F(PutTest, Arrays_OfScalars) {
    BYTE one = 1;
    BYTE two = 2;
    EXPECT_EQ(put(L"Bytes", arrayOf(VT_UI1, {&one, &two}), CIM_FLAG_ARRAY | CIM_UINT8), S_OK);
    OwnedVariant bytes = get(*target_, L"Bytes");
    ASSERT_EQ(bytes->vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(static_cast<BYTE*>(bytes->parray->pvData)[1], 2);
    EXPECT_EQ(put(L"Lines", arrayOf(VT_BSTR, {Text(L"a"), Text(L"b")})), S_OK);
    EXPECT_EQ(put(L"Ids", arrayOf(VT_BSTR, {Text(L"12")})), S_OK);
    EXPECT_EQ(put(L"Ids", arrayOf(VT_BSTR, {Text(L"x")})), wbem(WBEM_E_TYPE_MISMATCH));
}

TEST_F(PutTest, Arrays_AgainstScalars_TypeMismatch) {
    BYTE one = 1;
    EXPECT_EQ(put(L"U8", arrayOf(VT_UI1, {&one})), wbem(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(put(L"Bytes", variantOf(1)), wbem(WBEM_E_TYPE_MISMATCH));
    OwnedVariant noArray;
    noArray->vt = VT_ARRAY | VT_UI1;
    EXPECT_EQ(put(L"Bytes", std::move(noArray)), wbem(WBEM_E_TYPE_MISMATCH));
}

TEST_F(PutTest, Arrays_OfWideElementsOrByReference_TypeMismatch) {
    DECIMAL wide{};
    EXPECT_EQ(put(L"Longs", arrayOf(VT_DECIMAL, {&wide})), wbem(WBEM_E_TYPE_MISMATCH));
    OwnedVariant array = arrayOf(VT_UI1, {});
    VARIANT byReference{};
    byReference.vt = VT_ARRAY | VT_UI1 | VT_BYREF;
    byReference.pparray = &array->parray;
    EXPECT_EQ(target_->Put(L"Bytes", 0, &byReference, 0), wbem(WBEM_E_TYPE_MISMATCH));
}

TEST_F(PutTest, Arrays_EmptyOnesOfVariants_AreEmpty) {
    EXPECT_EQ(put(L"Bytes", arrayOf(VT_VARIANT, {})), S_OK);
    OwnedVariant bytes = get(*target_, L"Bytes");
    LONG upper = 0;
    ASSERT_EQ(bytes->vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(SafeArrayGetUBound(bytes->parray, 1, &upper), S_OK);
    EXPECT_EQ(upper, -1);
}

TEST_F(PutTest, Arrays_OfVariants_AreTakenElementByElement) {
    OwnedVariant seven = variantOf(7);
    EXPECT_EQ(put(L"Longs", arrayOf(VT_VARIANT, {seven.get()})), S_OK);
    OwnedVariant longs = get(*target_, L"Longs");
    EXPECT_EQ(static_cast<LONG*>(longs->parray->pvData)[0], 7);
    OwnedVariant none;
    none->vt = VT_NULL;
    EXPECT_EQ(put(L"Longs", arrayOf(VT_VARIANT, {none.get()})), wbem(WBEM_E_TYPE_MISMATCH));
}

TEST_F(PutTest, Arrays_OfObjects_AreCopiedAndLeaveNothingAlive) {
    const Object inner = spawn(L"Inner");
    const unsigned before = host().liveObjects().objects;
    EXPECT_EQ(put(L"Parts", arrayOf(VT_UNKNOWN, {inner.get(), inner.get()})), S_OK);
    EXPECT_EQ(host().liveObjects().objects, before);
    OwnedVariant parts = get(*target_, L"Parts");
    EXPECT_EQ(parts->vt, VT_ARRAY | VT_UNKNOWN);
    EXPECT_EQ(host().liveObjects().objects, before + 2);
}

TEST_F(PutTest, Put_ChangesTheObjectOnly) {
    EXPECT_EQ(put(L"U8", variantOf(9)), S_OK);
    EXPECT_EQ(get(*object(L"Target.Name=\"one\""), L"U8")->bVal, 1);
}

TEST_F(PutTest, Delete_GoesBackToTheDefault) {
    EXPECT_EQ(put(L"U32", variantOf(9)), S_OK);
    EXPECT_EQ(target_->Delete(L"U32"), WBEM_S_RESET_TO_DEFAULT);
    EXPECT_EQ(get(*target_, L"U32")->lVal, 3);
    EXPECT_EQ(target_->Delete(L"Nothing"), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(target_->Delete(L"__CLASS"), wbem(WBEM_E_SYSTEM_PROPERTY));
    EXPECT_EQ(target_->Delete(L"Name"), wbem(WBEM_E_READ_ONLY));
    EXPECT_EQ(target_->Delete(nullptr), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(object(L"Target")->Delete(L"U32"), wbem(WBEM_E_NOT_SUPPORTED));
}

}  // namespace
}  // namespace quista::test

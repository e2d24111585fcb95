// IWbemClassObject beyond Get and Put.
#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

using Names = std::vector<std::wstring>;

Names textsOf(SAFEARRAY* array) {
    Names texts;
    LONG upper = -1;
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
    for (LONG i = 0; i <= upper; ++i) {
        OwnedVariant text;
        EXPECT_EQ(SafeArrayGetElement(array, &i, &text->bstrVal), S_OK);
        text->vt = VT_BSTR;
        texts.push_back(textOf(text));
    }
    SafeArrayDestroy(array);
    return texts;
}

class ClassObjectTest : public HostTest {
  protected:
    ClassObjectTest() {
        loadSample();
        disk_ = object(L"Disk.Name=\"first\"");
        diskClass_ = object(L"Disk");
    }

    Names namesOf(LONG flags, const wchar_t* qualifier = nullptr) {
        SAFEARRAY* names = nullptr;
        EXPECT_EQ(disk_->GetNames(qualifier, flags, nullptr, &names), S_OK);
        return names == nullptr ? Names{} : textsOf(names);
    }

    Names walk(LONG flags) {
        Names names;
        EXPECT_EQ(disk_->BeginEnumeration(flags), S_OK);
        BSTR name = nullptr;
        OwnedVariant value;
        HRESULT result = S_OK;
        while ((result = disk_->Next(0, &name, value.get(), nullptr, nullptr)) == S_OK) {
            names.emplace_back(name);
            SysFreeString(name);
            VariantClear(value.get());
        }
        EXPECT_EQ(result, WBEM_S_NO_MORE_DATA);
        EXPECT_EQ(name, nullptr);
        EXPECT_EQ(disk_->EndEnumeration(), S_OK);
        return names;
    }

    Object disk_;
    Object diskClass_;
};

TEST_F(ClassObjectTest, GetNames_ByOrigin) {
    EXPECT_EQ(namesOf(WBEM_FLAG_NONSYSTEM_ONLY),
              (Names{L"Name", L"State", L"Size", L"Serial", L"Location", L"Paths", L"Enabled"}));
    EXPECT_EQ(namesOf(WBEM_FLAG_PROPAGATED_ONLY), (Names{L"Name", L"State"}));
    EXPECT_EQ(namesOf(WBEM_FLAG_LOCAL_ONLY).size(), 5U);
    EXPECT_EQ(namesOf(WBEM_FLAG_SYSTEM_ONLY).size(), 10U);
    EXPECT_EQ(namesOf(WBEM_FLAG_ALWAYS).size(), 17U);
}

TEST_F(ClassObjectTest, GetNames_ByKeyReferenceAndQualifier) {
    EXPECT_EQ(namesOf(WBEM_FLAG_KEYS_ONLY), Names{L"Name"});
    EXPECT_EQ(namesOf(LONG{WBEM_FLAG_REFS_ONLY} | LONG{WBEM_FLAG_NONSYSTEM_ONLY}), Names{});
    EXPECT_EQ(namesOf(WBEM_FLAG_ONLY_IF_TRUE, L"not_null"), Names{L"Enabled"});
    EXPECT_EQ(
        namesOf(LONG{WBEM_FLAG_ONLY_IF_FALSE} | LONG{WBEM_FLAG_LOCAL_ONLY}, L"NOT_NULL").size(),
        4U);
}

TEST_F(ClassObjectTest, GetNames_NotOffered) {
    SAFEARRAY* names = nullptr;
    EXPECT_EQ(disk_->GetNames(L"key", WBEM_FLAG_ONLY_IF_IDENTICAL, nullptr, &names),
              wbem(WBEM_E_NOT_SUPPORTED));
    EXPECT_EQ(names, nullptr);
    EXPECT_EQ(disk_->GetNames(nullptr, 0, nullptr, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, Enumeration_WalksTheProperties) {
    EXPECT_EQ(walk(WBEM_FLAG_NONSYSTEM_ONLY), namesOf(WBEM_FLAG_NONSYSTEM_ONLY));
    EXPECT_EQ(walk(WBEM_FLAG_SYSTEM_ONLY), namesOf(WBEM_FLAG_SYSTEM_ONLY));
    EXPECT_EQ(walk(0), namesOf(0));
}

TEST_F(ClassObjectTest, Enumeration_GivesTypesAndValues) {
    ASSERT_EQ(disk_->BeginEnumeration(WBEM_FLAG_LOCAL_ONLY), S_OK);
    BSTR name = nullptr;
    OwnedVariant value;
    CIMTYPE type = 0;
    LONG flavor = -1;
    ASSERT_EQ(disk_->Next(0, &name, value.get(), &type, &flavor), S_OK);
    EXPECT_STREQ(name, L"Size");
    SysFreeString(name);
    EXPECT_EQ(textOf(value), L"5000000000");
    EXPECT_EQ(type, CIM_UINT64);
    EXPECT_EQ(flavor, WBEM_FLAVOR_ORIGIN_LOCAL);
    EXPECT_EQ(disk_->Next(0, nullptr, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(disk_->Next(1, nullptr, nullptr, nullptr, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, Enumeration_NotBegunOrBegunTwice_Unexpected) {
    EXPECT_EQ(disk_->Next(0, nullptr, nullptr, nullptr, nullptr), wbem(WBEM_E_UNEXPECTED));
    EXPECT_EQ(disk_->BeginEnumeration(0), S_OK);
    EXPECT_EQ(disk_->BeginEnumeration(0), wbem(WBEM_E_UNEXPECTED));
    EXPECT_EQ(disk_->EndEnumeration(), S_OK);
    EXPECT_EQ(disk_->EndEnumeration(), S_OK);
    EXPECT_EQ(disk_->Next(0, nullptr, nullptr, nullptr, nullptr), wbem(WBEM_E_UNEXPECTED));
    EXPECT_EQ(disk_->BeginEnumeration(4), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, Clone_IsIndependentAndEqual) {
    IWbemClassObject* clone = nullptr;
    ASSERT_EQ(disk_->Clone(&clone), S_OK);
    const Object copy(clone);
    EXPECT_EQ(disk_->CompareTo(0, copy.get()), WBEM_S_SAME);
    OwnedVariant serial = variantOf(L"changed");
    EXPECT_EQ(copy->Put(L"Serial", 0, serial.get(), 0), S_OK);
    EXPECT_EQ(disk_->CompareTo(0, copy.get()), WBEM_S_DIFFERENT);
    OwnedVariant old = get(*disk_, L"Serial");
    EXPECT_EQ(textOf(old), L"ABC");
    EXPECT_EQ(disk_->Clone(nullptr), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, CompareTo_ClassesAndStrangers) {
    EXPECT_EQ(diskClass_->CompareTo(0, object(L"Disk").get()), WBEM_S_SAME);
    EXPECT_EQ(diskClass_->CompareTo(0, object(L"Device").get()), WBEM_S_DIFFERENT);
    EXPECT_EQ(diskClass_->CompareTo(0, disk_.get()), WBEM_S_DIFFERENT);
    EXPECT_EQ(diskClass_->CompareTo(0, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, GetObjectText_IsMof) {
    BSTR text = nullptr;
    ASSERT_EQ(disk_->GetObjectText(0, &text), S_OK);
    const std::wstring mof = text;
    SysFreeString(text);
    EXPECT_NE(mof.find(L"instance of Disk"), std::wstring::npos) << mof.size();
    EXPECT_NE(mof.find(L"Serial = \"ABC\""), std::wstring::npos);
    text = nullptr;
    ASSERT_EQ(diskClass_->GetObjectText(WBEM_FLAG_NO_FLAVORS, &text), S_OK);
    EXPECT_NE(std::wstring(text).find(L"class Disk : Device"), std::wstring::npos);
    SysFreeString(text);
}

TEST_F(ClassObjectTest, GetObjectText_PointerNotNull_InvalidParameter) {
    BSTR text = SysAllocString(L"already there");
    EXPECT_EQ(disk_->GetObjectText(0, &text), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_STREQ(text, L"already there");
    SysFreeString(text);
    EXPECT_EQ(disk_->GetObjectText(0, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
    text = nullptr;
    EXPECT_EQ(disk_->GetObjectText(2, &text), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, SpawnInstance_OfAClass_HasItsDefaults) {
    const Object fresh = spawn(L"Disk");
    EXPECT_EQ(get(*fresh, L"State")->lVal, 7);
    EXPECT_EQ(get(*fresh, L"Name")->vt, VT_NULL);
    EXPECT_EQ(get(*fresh, L"__GENUS")->lVal, WBEM_GENUS_INSTANCE);
}

TEST_F(ClassObjectTest, SpawnInstance_OfAnInstance_IsEmpty) {
    IWbemClassObject* spawned = nullptr;
    ASSERT_EQ(disk_->SpawnInstance(0, &spawned), S_OK);
    const Object fresh(spawned);
    EXPECT_EQ(get(*fresh, L"State")->vt, VT_NULL);
    EXPECT_EQ(get(*fresh, L"Serial")->vt, VT_NULL);
}

TEST_F(ClassObjectTest, SpawnInstance_AbstractClass_IncompleteClass_OutputLeftAlone) {
    const auto untouched = reinterpret_cast<IWbemClassObject*>(8);
    IWbemClassObject* spawned = untouched;
    EXPECT_EQ(object(L"Device")->SpawnInstance(0, &spawned), wbem(WBEM_E_INCOMPLETE_CLASS));
    EXPECT_EQ(spawned, untouched);
    EXPECT_EQ(diskClass_->SpawnInstance(1, &spawned), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(diskClass_->SpawnInstance(0, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, InheritsFrom_ItselfAndAncestors) {
    EXPECT_EQ(disk_->InheritsFrom(L"DEVICE"), S_OK);
    EXPECT_EQ(disk_->InheritsFrom(L"Disk"), S_OK);
    EXPECT_EQ(disk_->InheritsFrom(L"FastDisk"), WBEM_S_FALSE);
    EXPECT_EQ(disk_->InheritsFrom(nullptr), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, Origins_NameTheDeclaringClass) {
    BSTR className = nullptr;
    EXPECT_EQ(disk_->GetPropertyOrigin(L"state", &className), S_OK);
    EXPECT_STREQ(className, L"Device");
    SysFreeString(className);
    EXPECT_EQ(disk_->GetPropertyOrigin(L"Nothing", &className), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(className, nullptr);
    EXPECT_EQ(object(L"FastDisk")->GetMethodOrigin(L"reset", &className), S_OK);
    EXPECT_STREQ(className, L"Disk");
    SysFreeString(className);
    EXPECT_EQ(diskClass_->GetMethodOrigin(L"Nothing", &className), wbem(WBEM_E_NOT_FOUND));
}

TEST_F(ClassObjectTest, GetMethod_WithInputs_GivesBothSignatures) {
    IWbemClassObject* in = nullptr;
    IWbemClassObject* out = nullptr;
    ASSERT_EQ(diskClass_->GetMethod(L"RESET", 0, &in, &out), S_OK);
    const Object inSignature(in);
    const Object outSignature(out);
    OwnedVariant className = get(*inSignature, L"__CLASS");
    EXPECT_EQ(textOf(className), L"__PARAMETERS");
    EXPECT_EQ(inSignature->Get(L"Mode", 0, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(inSignature->Get(L"ReturnCode", 0, nullptr, nullptr, nullptr),
              wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(outSignature->Get(L"ReturnCode", 0, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(outSignature->Get(L"ReturnValue", 0, nullptr, nullptr, nullptr),
              wbem(WBEM_E_NOT_FOUND));
}

TEST_F(ClassObjectTest, GetMethod_WithoutInputs_InSignatureIsNull) {
    IWbemClassObject* in = reinterpret_cast<IWbemClassObject*>(8);
    EXPECT_EQ(diskClass_->GetMethod(L"Refresh", 0, &in, nullptr), S_OK);
    EXPECT_EQ(in, nullptr);
    IWbemClassObject* out = reinterpret_cast<IWbemClassObject*>(8);
    EXPECT_EQ(diskClass_->GetMethod(L"Forget", 0, nullptr, &out), S_OK);
    EXPECT_EQ(out, nullptr);
}

TEST_F(ClassObjectTest, GetMethod_Failures) {
    IWbemClassObject* in = reinterpret_cast<IWbemClassObject*>(8);
    EXPECT_EQ(diskClass_->GetMethod(L"Nothing", 0, &in, nullptr), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(in, nullptr);
    EXPECT_EQ(disk_->GetMethod(L"Reset", 0, &in, nullptr), wbem(WBEM_E_ILLEGAL_OPERATION));
    EXPECT_EQ(diskClass_->GetMethod(nullptr, 0, &in, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(diskClass_->GetMethod(L"Reset", 1, &in, nullptr), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, MethodEnumeration_WalksTheMethods) {
    ASSERT_EQ(diskClass_->BeginMethodEnumeration(0), S_OK);
    EXPECT_EQ(diskClass_->BeginMethodEnumeration(0), wbem(WBEM_E_UNEXPECTED));
    Names names;
    BSTR name = nullptr;
    IWbemClassObject* in = nullptr;
    while (diskClass_->NextMethod(0, &name, &in, nullptr) == S_OK) {
        names.emplace_back(name);
        SysFreeString(name);
        if (in != nullptr) in->Release();
    }
    EXPECT_EQ(names, (Names{L"Reset", L"Refresh", L"Check", L"Forget", L"Rescan"}));
    EXPECT_EQ(diskClass_->NextMethod(0, nullptr, nullptr, nullptr), WBEM_S_NO_MORE_DATA);
    EXPECT_EQ(diskClass_->EndMethodEnumeration(), S_OK);
    EXPECT_EQ(diskClass_->NextMethod(0, nullptr, nullptr, nullptr), wbem(WBEM_E_UNEXPECTED));
    EXPECT_EQ(disk_->BeginMethodEnumeration(0), wbem(WBEM_E_ILLEGAL_OPERATION));
    EXPECT_EQ(diskClass_->BeginMethodEnumeration(1), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ClassObjectTest, QualifiersAndClassChanges_NotImplemented) {
    IWbemQualifierSet* qualifiers = nullptr;
    IWbemClassObject* derived = nullptr;
    host().clearTrace();
    EXPECT_EQ(disk_->GetQualifierSet(&qualifiers), E_NOTIMPL);
    EXPECT_EQ(disk_->GetPropertyQualifierSet(L"Name", &qualifiers), E_NOTIMPL);
    EXPECT_EQ(disk_->GetMethodQualifierSet(L"Reset", &qualifiers), E_NOTIMPL);
    EXPECT_EQ(diskClass_->SpawnDerivedClass(0, &derived), E_NOTIMPL);
    EXPECT_EQ(diskClass_->PutMethod(L"New", 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(diskClass_->DeleteMethod(L"Reset"), E_NOTIMPL);
    EXPECT_EQ(host().trace().size(), 6U);
}

}  // namespace
}  // namespace quista::test

// IWbemServices: objects, enumerations, deletion, and what is not offered.
#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

using Names = std::vector<std::wstring>;

class ServicesTest : public HostTest {
  protected:
    ServicesTest() { loadSample(); }

    HRESULT getObject(const wchar_t* path) {
        IWbemClassObject* found = nullptr;
        const HRESULT result = wmi().GetObject(Text(path), 0, nullptr, &found, nullptr);
        EXPECT_EQ(found != nullptr, result == S_OK);
        if (found != nullptr) found->Release();
        return result;
    }

    Names classNames(const wchar_t* superclass, LONG flags) {
        IEnumWbemClassObject* classes = nullptr;
        EXPECT_EQ(wmi().CreateClassEnum(Text(superclass), flags, nullptr, &classes), S_OK);
        const Results owned(classes);
        Names found;
        IWbemClassObject* next = nullptr;
        ULONG returned = 0;
        while (owned->Next(kInfinite, 1, &next, &returned) == S_OK) {
            const Object definition(next);
            OwnedVariant name = get(*definition, L"__CLASS");
            found.push_back(textOf(name));
        }
        return found;
    }
};

TEST_F(ServicesTest, GetObject_Class_GivesTheDefinition) {
    OwnedVariant genus = get(*object(L"DISK"), L"__GENUS");
    EXPECT_EQ(genus->lVal, WBEM_GENUS_CLASS);
}

TEST_F(ServicesTest, GetObject_Instance_ByEveryFormOfPath) {
    for (const wchar_t* path :
         {L"Disk.Name=\"first\"", L"disk=\"FIRST\"", L"\\\\.\\root\\wmi:Disk.Name=\"first\"",
          L"root\\wmi:Disk.Name=\"first\""}) {
        const Object found = object(path);
        ASSERT_NE(found, nullptr) << path;
        OwnedVariant serial = get(*found, L"Serial");
        EXPECT_EQ(textOf(serial), L"ABC");
    }
}

TEST_F(ServicesTest, GetObject_Missing_NotFound) {
    EXPECT_EQ(getObject(L"Unknown"), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(getObject(L"Unknown.Name=\"first\""), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(getObject(L"Disk.Name=\"third\""), wbem(WBEM_E_NOT_FOUND));
}

TEST_F(ServicesTest, GetObject_BadPath_InvalidObjectPath) {
    EXPECT_EQ(getObject(L"Disk.Name="), wbem(WBEM_E_INVALID_OBJECT_PATH));
}

TEST_F(ServicesTest, GetObject_UnknownNamespace_InvalidNamespace) {
    EXPECT_EQ(getObject(L"root\\other:Disk"), wbem(WBEM_E_INVALID_NAMESPACE));
}

TEST_F(ServicesTest, GetObject_BothOutputsNull_TellsWhetherTheClassExists) {
    EXPECT_EQ(wmi().GetObject(Text(L"Disk"), 0, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(wmi().GetObject(Text(L"Unknown"), 0, nullptr, nullptr, nullptr),
              wbem(WBEM_E_NOT_FOUND));
}

TEST_F(ServicesTest, GetObject_NullOrEmptyPath_GivesAnEmptyClass) {
    for (const wchar_t* path : {static_cast<const wchar_t*>(nullptr), L""}) {
        const Object empty = object(path);
        ASSERT_NE(empty, nullptr);
        OwnedVariant name = get(*empty, L"__CLASS");
        EXPECT_EQ(name->vt, VT_NULL);
        IWbemClassObject* spawned = nullptr;
        EXPECT_EQ(empty->SpawnInstance(0, &spawned), wbem(WBEM_E_INCOMPLETE_CLASS));
    }
}

TEST_F(ServicesTest, CreateInstanceEnum_Deep_TakesSubclassesIn) {
    EXPECT_EQ(names(*enumerate(L"disk")), (Names{L"first", L"second"}));
    EXPECT_EQ(names(*enumerate(L"Device")), (Names{L"first", L"second"}));
}

TEST_F(ServicesTest, CreateInstanceEnum_Shallow_TakesTheClassAlone) {
    EXPECT_EQ(names(*enumerate(L"Disk", 0x31)), Names{L"first"});
    EXPECT_EQ(names(*enumerate(L"Device", 0x31)), Names{});
}

TEST_F(ServicesTest, CreateInstanceEnum_LaterChanges_DoNotTouchTheResults) {
    const Results results = enumerate(L"Disk", kForwardOnly);
    host().removeInstances(L"root\\wmi", L"Disk");
    EXPECT_EQ(names(*results), (Names{L"first", L"second"}));
}

TEST_F(ServicesTest, CreateInstanceEnum_UnknownClass_SynchronousFailsAtOnce) {
    IEnumWbemClassObject* results = nullptr;
    EXPECT_EQ(wmi().CreateInstanceEnum(Text(L"Unknown"), 0, nullptr, &results),
              wbem(WBEM_E_INVALID_CLASS));
    EXPECT_EQ(results, nullptr);
}

TEST_F(ServicesTest, CreateInstanceEnum_UnknownClass_SemisynchronousFailsAtEveryNext) {
    const Results results = enumerate(L"Unknown", kForwardOnly);
    for (int i = 0; i < 2; ++i) {
        IWbemClassObject* object = nullptr;
        ULONG returned = 9;
        EXPECT_EQ(results->Next(kInfinite, 1, &object, &returned), wbem(WBEM_E_INVALID_CLASS));
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(returned, 0U);
    }
}

TEST_F(ServicesTest, SetUnknownClassAtCreation_SemisynchronousFailsAtOnce) {
    host().setUnknownClassAtCreation(true);
    IEnumWbemClassObject* results = nullptr;
    EXPECT_EQ(wmi().CreateInstanceEnum(Text(L"Unknown"), kForwardOnly, nullptr, &results),
              wbem(WBEM_E_INVALID_CLASS));
    EXPECT_EQ(results, nullptr);
}

TEST_F(ServicesTest, CreateInstanceEnum_BadArguments_InvalidParameter) {
    IEnumWbemClassObject* results = nullptr;
    EXPECT_EQ(wmi().CreateInstanceEnum(nullptr, 0, nullptr, &results),
              wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(wmi().CreateInstanceEnum(Text(L"Disk"), 0x40000000, nullptr, &results),
              wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(wmi().CreateInstanceEnum(Text(L"Disk"), 0, nullptr, nullptr),
              wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(ServicesTest, CreateClassEnum_DeepAndShallow) {
    EXPECT_EQ(classNames(L"Device", 0), (Names{L"Disk", L"FastDisk"}));
    EXPECT_EQ(classNames(L"Device", WBEM_FLAG_SHALLOW), Names{L"Disk"});
    EXPECT_EQ(classNames(nullptr, WBEM_FLAG_SHALLOW), (Names{L"Device", L"Address"}));
}

TEST_F(ServicesTest, CreateClassEnum_UnknownSuperclass_InvalidClass) {
    IEnumWbemClassObject* classes = nullptr;
    EXPECT_EQ(wmi().CreateClassEnum(Text(L"Unknown"), 0, nullptr, &classes),
              wbem(WBEM_E_INVALID_CLASS));
    EXPECT_EQ(classes, nullptr);
}

TEST_F(ServicesTest, DeleteInstance_RemovesIt) {
    EXPECT_EQ(wmi().DeleteInstance(Text(L"Disk.Name=\"first\""), 0, nullptr, nullptr), S_OK);
    EXPECT_EQ(wmi().DeleteInstance(Text(L"Disk.Name=\"first\""), 0, nullptr, nullptr),
              wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(wmi().DeleteInstance(Text(L"Disk"), 0, nullptr, nullptr),
              wbem(WBEM_E_INVALID_OBJECT_PATH));
    EXPECT_EQ(names(*enumerate(L"Disk")), Names{L"second"});
}

TEST_F(ServicesTest, DeleteClass_RemovesSubclassesAndInstances) {
    EXPECT_EQ(wmi().DeleteClass(Text(L"Disk"), 0, nullptr, nullptr), S_OK);
    EXPECT_EQ(getObject(L"FastDisk"), wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(wmi().DeleteClass(Text(L"Disk"), 0, nullptr, nullptr), wbem(WBEM_E_INVALID_CLASS));
}

TEST_F(ServicesTest, SinkOperationsAndEvents_AreRecordedAsNotImplemented) {
    const Text text(L"Disk");
    IEnumWbemClassObject* events = nullptr;
    IWbemObjectSink* sink = nullptr;
    wmi();
    host().clearTrace();
    EXPECT_EQ(wmi().CancelAsyncCall(nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().QueryObjectSink(0, &sink), E_NOTIMPL);
    EXPECT_EQ(wmi().GetObjectAsync(text, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().PutClass(nullptr, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().PutClassAsync(nullptr, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().DeleteClassAsync(text, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().CreateClassEnumAsync(text, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().PutInstanceAsync(nullptr, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().DeleteInstanceAsync(text, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().CreateInstanceEnumAsync(text, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().ExecQueryAsync(text, text, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().ExecNotificationQuery(text, text, 0, nullptr, &events), E_NOTIMPL);
    EXPECT_EQ(wmi().ExecNotificationQueryAsync(text, text, 0, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(wmi().ExecMethodAsync(text, text, 0, nullptr, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(host().trace().size(), 14U);
    EXPECT_EQ(host().trace().back().method, L"ExecMethodAsync");
    EXPECT_EQ(host().trace().back().result, E_NOTIMPL);
}

}  // namespace
}  // namespace quista::test

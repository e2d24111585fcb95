// Faults, overrides and trace at the interfaces.
#include <array>

#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

using simulator::CallRecord;
using simulator::Fault;
using simulator::LiveObjects;

class InstrumentationTest : public HostTest {
  protected:
    InstrumentationTest() { loadSample(); }

    HRESULT next(IEnumWbemClassObject& results, Object& object) {
        IWbemClassObject* found = nullptr;
        ULONG returned = 0;
        const HRESULT result = results.Next(kInfinite, 1, &found, &returned);
        EXPECT_EQ(returned, found != nullptr ? 1U : 0U);
        object.reset(found);
        return result;
    }
};

TEST_F(InstrumentationTest, Fault_ConnectServer_ByNamespace) {
    host().addFault({L"IWbemLocator", L"ConnectServer", L"root\\cimv2", L"", 1, 0, E_ACCESSDENIED});
    const ComOwner<IWbemLocator> locator = createLocator();
    IWbemServices* services = nullptr;
    EXPECT_EQ(locator->ConnectServer(Text(L"ROOT\\CIMV2"), nullptr, nullptr, nullptr, 0, nullptr,
                                     nullptr, &services),
              E_ACCESSDENIED);
    EXPECT_EQ(services, nullptr);
    EXPECT_NE(connect(L"root\\wmi"), nullptr);
}

TEST_F(InstrumentationTest, Fault_Next_ConsumesNothing) {
    host().addFault({L"IEnumWbemClassObject", L"Next", L"Disk", L"", 2, 1, E_ABORT});
    const Results disks = enumerate(L"Disk", kForwardOnly);
    Object disk;
    EXPECT_EQ(next(*disks, disk), S_OK);
    EXPECT_EQ(next(*disks, disk), E_ABORT);
    EXPECT_EQ(disk, nullptr);
    EXPECT_EQ(next(*disks, disk), S_OK);
    OwnedVariant name = get(*disk, L"Name");
    EXPECT_EQ(textOf(name), L"second");
}

TEST_F(InstrumentationTest, Fault_NextSaysSuccess_DeliversNullObjects) {
    host().addFault({L"IEnumWbemClassObject", L"Next", L"", L"", 1, 1, S_OK});
    std::array<IWbemClassObject*, 2> objects;
    objects.fill(reinterpret_cast<IWbemClassObject*>(8));
    ULONG returned = 9;
    EXPECT_EQ(enumerate(L"Disk")->Next(kInfinite, 2, objects.data(), &returned), S_OK);
    EXPECT_EQ(objects[0], nullptr);
    EXPECT_EQ(objects[1], nullptr);
    EXPECT_EQ(returned, 0U);
}

TEST_F(InstrumentationTest, Fault_NextSaysFalse_LeavesTheArrayAlone) {
    host().addFault({L"IEnumWbemClassObject", L"Next", L"", L"", 1, 1, wbem(WBEM_S_FALSE)});
    const auto untouched = reinterpret_cast<IWbemClassObject*>(8);
    IWbemClassObject* object = untouched;
    ULONG returned = 9;
    EXPECT_EQ(enumerate(L"Disk")->Next(kInfinite, 1, &object, &returned), WBEM_S_FALSE);
    EXPECT_EQ(object, untouched);
    EXPECT_EQ(returned, 0U);
}

TEST_F(InstrumentationTest, Fault_QueryWithSuccess_GivesNoEnumerator) {
    host().addFault({L"IWbemServices", L"ExecQuery", L"disk", L"", 1, 1, S_OK});
    IEnumWbemClassObject* results = reinterpret_cast<IEnumWbemClassObject*>(8);
    EXPECT_EQ(wmi().ExecQuery(Text(L"WQL"), Text(L"SELECT * FROM Disk"), 0, nullptr, &results),
              S_OK);
    EXPECT_EQ(results, nullptr);
}

TEST_F(InstrumentationTest, Fault_Get_ByClassAndProperty_LeavesTheVariantAlone) {
    host().addFault({L"", L"Get", L"Disk", L"Serial", 1, 0, wbem(WBEM_E_FAILED)});
    const Object disk = object(L"Disk.Name=\"first\"");
    const Object fast = object(L"FastDisk.Name=\"second\"");
    OwnedVariant value = variantOf(5);
    EXPECT_EQ(disk->Get(L"Serial", 0, value.get(), nullptr, nullptr), wbem(WBEM_E_FAILED));
    EXPECT_EQ(value->lVal, 5);
    EXPECT_EQ(disk->Get(L"Name", 0, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(fast->Get(L"Serial", 0, nullptr, nullptr, nullptr), S_OK);
}

TEST_F(InstrumentationTest, Fault_GetSaysSuccess_GivesNull) {
    host().addFault({L"", L"Get", L"", L"Serial", 1, 1, S_OK});
    OwnedVariant value;
    EXPECT_EQ(object(L"Disk.Name=\"first\"")->Get(L"Serial", 0, value.get(), nullptr, nullptr),
              S_OK);
    EXPECT_EQ(value->vt, VT_NULL);
}

TEST_F(InstrumentationTest, Fault_EmbeddedObject_IsFoundByItsClass) {
    host().addFault({L"IWbemClassObject", L"Get", L"Address", L"Lun", 1, 1, E_ABORT});
    OwnedVariant location = get(*object(L"Disk.Name=\"first\""), L"Location");
    auto& address = *static_cast<IWbemClassObject*>(location->punkVal);
    EXPECT_EQ(address.Get(L"Lun", 0, nullptr, nullptr, nullptr), E_ABORT);
    EXPECT_EQ(get(address, L"Lun")->bVal, 2);
}

TEST_F(InstrumentationTest, Fault_ExecMethod_ByMethod_DoesNothing) {
    host().addFault({L"IWbemServices", L"ExecMethod", L"Disk", L"refresh", 1, 1, E_ABORT});
    IWbemClassObject* out = reinterpret_cast<IWbemClassObject*>(8);
    EXPECT_EQ(wmi().ExecMethod(Text(L"Disk.Name=\"first\""), Text(L"Refresh"), 0, nullptr, nullptr,
                               &out, nullptr),
              E_ABORT);
    EXPECT_EQ(out, nullptr);
}

TEST_F(InstrumentationTest, Fault_PutInstance_StoresNothing) {
    host().addFault({L"", L"PutInstance", L"Disk", L"", 1, 1, wbem(WBEM_E_PROVIDER_FAILURE)});
    const Object disk = object(L"Disk.Name=\"first\"");
    OwnedVariant serial = variantOf(L"NEW");
    ASSERT_EQ(disk->Put(L"Serial", 0, serial.get(), 0), S_OK);
    EXPECT_EQ(wmi().PutInstance(disk.get(), 0, nullptr, nullptr), wbem(WBEM_E_PROVIDER_FAILURE));
    OwnedVariant stored = get(*object(L"Disk.Name=\"first\""), L"Serial");
    EXPECT_EQ(textOf(stored), L"ABC");
}

TEST_F(InstrumentationTest, Fault_SpawnInstanceSaysSuccess_GivesNull) {
    host().addFault({L"", L"SpawnInstance", L"", L"", 1, 1, S_OK});
    IWbemClassObject* spawned = reinterpret_cast<IWbemClassObject*>(8);
    EXPECT_EQ(object(L"Disk")->SpawnInstance(0, &spawned), S_OK);
    EXPECT_EQ(spawned, nullptr);
}

TEST_F(InstrumentationTest, Fault_QueryInterface_OfAnEmbeddedObject) {
    host().addFault({L"IWbemClassObject", L"QueryInterface", L"Address", L"", 1, 1, E_NOINTERFACE});
    OwnedVariant location = get(*object(L"Disk.Name=\"first\""), L"Location");
    void* found = nullptr;
    EXPECT_EQ(location->punkVal->QueryInterface(IID_IWbemClassObject, &found), E_NOINTERFACE);
    EXPECT_EQ(found, nullptr);
}

TEST_F(InstrumentationTest, Fault_ClassFactory_FailsTheCreation) {
    host().addFault({L"IClassFactory", L"CreateInstance", L"WbemLocator", L"", 1, 1, E_ABORT});
    void* locator = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               &locator),
              E_ABORT);
}

TEST_F(InstrumentationTest, ClearFaults_ForgetsAll) {
    host().addFault(Fault{.count = 0, .result = E_ABORT});
    host().clearFaults();
    EXPECT_NE(connect(), nullptr);
}

TEST_F(InstrumentationTest, Override_GivesAnyType_TheCimTypeStays) {
    OwnedVariant text = variantOf(L"not a number");
    host().addOverride({L"Disk", L"State", 2, 1}, *text);
    const Object disk = object(L"Disk.Name=\"first\"");
    EXPECT_EQ(get(*disk, L"State")->lVal, 7);
    OwnedVariant value;
    CIMTYPE type = 0;
    EXPECT_EQ(disk->Get(L"state", 0, value.get(), &type, nullptr), S_OK);
    EXPECT_EQ(textOf(value), L"not a number");
    EXPECT_EQ(type, CIM_UINT32);
    EXPECT_EQ(get(*disk, L"State")->lVal, 7);
}

TEST_F(InstrumentationTest, Override_WithAnObject_IsReleasedAtTheEnd) {
    {
        const Object address = spawn(L"Address");
        OwnedVariant value;
        value->vt = VT_UNKNOWN;
        value->punkVal = address.get();
        address->AddRef();
        host().addOverride({L"Disk", L"Serial"}, *value);
    }
    EXPECT_EQ(get(*object(L"Disk.Name=\"first\""), L"Serial")->vt, VT_UNKNOWN);
    EXPECT_EQ(host().liveObjects().objects, 1U);
    host().clearFaults();
    EXPECT_EQ(host().liveObjects().objects, 0U);
}

TEST_F(InstrumentationTest, Trace_RecordsEveryCallInOrder) {
    wmi();
    host().clearTrace();
    const Results disks = enumerate(L"Disk", kForwardOnly);
    Object disk;
    next(*disks, disk);
    disk->Get(L"Nothing", 0, nullptr, nullptr, nullptr);
    wmi().ExecMethod(Text(L"Disk.Name=\"first\""), Text(L"Refresh"), 0, nullptr, nullptr, nullptr,
                     nullptr);
    const std::vector<CallRecord> trace = host().trace();
    ASSERT_EQ(trace.size(), 4U);
    EXPECT_EQ(trace[0].interfaceName, L"IWbemServices");
    EXPECT_EQ(trace[0].method, L"CreateInstanceEnum");
    EXPECT_EQ(trace[0].className, L"Disk");
    EXPECT_EQ(trace[1].interfaceName, L"IEnumWbemClassObject");
    EXPECT_EQ(trace[1].method, L"Next");
    EXPECT_EQ(trace[1].className, L"Disk");
    EXPECT_EQ(trace[2].method, L"Get");
    EXPECT_EQ(trace[2].detail, L"Nothing");
    EXPECT_EQ(trace[2].result, wbem(WBEM_E_NOT_FOUND));
    EXPECT_EQ(trace[3].method, L"ExecMethod");
    EXPECT_EQ(trace[3].detail, L"Refresh");
    EXPECT_EQ(trace[3].path, L"Disk.Name=\"first\"");
}

TEST_F(InstrumentationTest, Trace_HoldsQueryNamespaceAndFaultedCalls) {
    host().clearTrace();
    host().addFault({L"", L"ExecQuery", L"", L"", 1, 1, E_ABORT});
    IEnumWbemClassObject* results = nullptr;
    wmi().ExecQuery(Text(L"WQL"), Text(L"SELECT * FROM Disk"), 0, nullptr, &results);
    const std::vector<CallRecord> trace = host().trace();
    ASSERT_EQ(trace.size(), 3U);
    EXPECT_EQ(trace[0].interfaceName, L"IClassFactory");
    EXPECT_EQ(trace[0].className, L"WbemLocator");
    EXPECT_EQ(trace[1].method, L"ConnectServer");
    EXPECT_EQ(trace[1].className, L"root\\wmi");
    EXPECT_EQ(trace[2].className, L"Disk");
    EXPECT_EQ(trace[2].detail, L"SELECT * FROM Disk");
    EXPECT_EQ(trace[2].result, E_ABORT);
}

TEST_F(InstrumentationTest, SetTracing_Off_RecordsNothing) {
    host().setTracing(false);
    connect();
    EXPECT_TRUE(host().trace().empty());
}

TEST_F(InstrumentationTest, Dump_CanBeLoadedAgain) {
    const std::wstring text = host().dump();
    host().clear();
    EXPECT_EQ(host().countInstances(L"root\\wmi", L"Disk"), 0U);
    load(text);
    EXPECT_EQ(host().countInstances(L"root\\wmi", L"Disk"), 2U);
    EXPECT_EQ(host().dump(), text);
}

TEST_F(InstrumentationTest, LoadText_Refused_TellsWhereAndLoadsNothing) {
    simulator::LoadError error;
    EXPECT_FALSE(
        host().loadText(L"class New { [key] string Name; };\nclass Broken {", L"bad.mof", error));
    EXPECT_EQ(error.file, L"bad.mof");
    EXPECT_EQ(error.line, 2U);
    EXPECT_FALSE(error.reason.empty());
    EXPECT_EQ(object(L"New"), nullptr);
}

TEST_F(InstrumentationTest, Load_MissingFile_IsRefused) {
    simulator::LoadError error;
    EXPECT_FALSE(host().load(L"nowhere.mof", error));
    EXPECT_EQ(error.line, 0U);
    EXPECT_FALSE(host().load(L"nowhere", error));
    EXPECT_NE(error.file.find(L"hosts\\nowhere.mof"), std::wstring::npos);
}

}  // namespace
}  // namespace quista::test

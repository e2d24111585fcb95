// Ownership: reference counts, identity, life beyond the simulator.
#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

using simulator::LiveObjects;

class ReferencesTest : public HostTest {
  protected:
    ReferencesTest() { loadSample(); }
};

TEST_F(ReferencesTest, EveryKind_IsCountedWhileItLives) {
    const ComOwner<IWbemLocator> locator = createLocator();
    ComOwner<IWbemServices> services = connect();
    IEnumWbemClassObject* found = nullptr;
    ASSERT_EQ(services->CreateInstanceEnum(Text(L"Disk"), 0, nullptr, &found), S_OK);
    Results results(found);
    IWbemClassObject* next = nullptr;
    ULONG returned = 0;
    ASSERT_EQ(results->Next(kInfinite, 1, &next, &returned), S_OK);
    Object disk(next);
    EXPECT_EQ(host().liveObjects(),
              (LiveObjects{.locators = 1, .services = 1, .enumerators = 1, .objects = 1}));
    disk.reset();
    results.reset();
    services.reset();
    EXPECT_EQ(host().liveObjects(), LiveObjects{.locators = 1});
}

TEST_F(ReferencesTest, AddRefAndRelease_CountTruly) {
    IWbemServices* services = connect().release();
    EXPECT_EQ(services->AddRef(), 2U);
    EXPECT_EQ(services->Release(), 1U);
    EXPECT_EQ(host().liveObjects().services, 1U);
    EXPECT_EQ(services->Release(), 0U);
    EXPECT_EQ(host().liveObjects().services, 0U);
}

TEST_F(ReferencesTest, QueryInterface_OwnInterfaceAndUnknown_OthersRefused) {
    const ComOwner<IWbemServices> services = connect();
    void* same = nullptr;
    EXPECT_EQ(services->QueryInterface(IID_IWbemServices, &same), S_OK);
    EXPECT_EQ(same, services.get());
    EXPECT_EQ(services->Release(), 1U);
    void* unknown = nullptr;
    EXPECT_EQ(services->QueryInterface(IID_IUnknown, &unknown), S_OK);
    EXPECT_EQ(unknown, services.get());
    EXPECT_EQ(services->Release(), 1U);
    void* other = &other;
    EXPECT_EQ(services->QueryInterface(IID_IWbemLocator, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(services->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ReferencesTest, QueryInterface_OfEveryInterface) {
    const ComOwner<IWbemLocator> locator = createLocator();
    const Results results = enumerate(L"Disk");
    const Object disk = object(L"Disk");
    const std::vector<std::pair<IUnknown*, IID>> pairs{{locator.get(), IID_IWbemLocator},
                                                       {results.get(), IID_IEnumWbemClassObject},
                                                       {disk.get(), IID_IWbemClassObject}};
    for (const auto& [object, iid] : pairs) {
        void* same = nullptr;
        EXPECT_EQ(object->QueryInterface(iid, &same), S_OK);
        EXPECT_EQ(same, object);
        EXPECT_EQ(object->Release(), 1U);
    }
}

TEST_F(ReferencesTest, Stop_ObjectsStayUsable) {
    const ComOwner<IWbemServices> services = connect();
    host().stop();
    EXPECT_EQ(services->GetObject(Text(L"Disk"), 0, nullptr, nullptr, nullptr), S_OK);
}

TEST_F(ReferencesTest, Destroy_ObjectsStayUsable) {
    const ComOwner<IWbemServices> services = connect();
    const Object disk = object(L"Disk.Name=\"first\"");
    const Results results = enumerate(L"Disk");
    destroyHost();
    OwnedVariant serial = get(*disk, L"Serial");
    EXPECT_EQ(textOf(serial), L"ABC");
    EXPECT_EQ(names(*results).size(), 2U);
    EXPECT_EQ(services->GetObject(Text(L"Disk"), 0, nullptr, nullptr, nullptr), S_OK);
}

TEST_F(ReferencesTest, Clear_ObjectsStayUsable) {
    const Object disk = object(L"Disk.Name=\"first\"");
    host().clear();
    OwnedVariant serial = get(*disk, L"Serial");
    EXPECT_EQ(textOf(serial), L"ABC");
    EXPECT_EQ(object(L"Disk"), nullptr);
}

TEST_F(ReferencesTest, FailedCalls_LeaveNothingAlive) {
    const ComOwner<IWbemServices> services = connect();
    const LiveObjects before = host().liveObjects();
    IWbemClassObject* out = nullptr;
    IEnumWbemClassObject* results = nullptr;
    services->GetObject(Text(L"Nothing"), 0, nullptr, &out, nullptr);
    services->ExecQuery(Text(L"WQL"), Text(L"nonsense"), 0, nullptr, &results);
    services->ExecMethod(Text(L"Disk"), Text(L"Nothing"), 0, nullptr, nullptr, &out, nullptr);
    EXPECT_EQ(host().liveObjects(), before);
}

}  // namespace
}  // namespace quista::test

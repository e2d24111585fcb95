// How CoCreateInstance finds the simulator, and how it stops finding it.
#include <thread>

#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

using simulator::LiveObjects;
using simulator::SimulatedHost;

class RegistrationTest : public HostTest {};

HRESULT create(REFCLSID id, REFIID iid, void** object, IUnknown* outer = nullptr) {
    return CoCreateInstance(id, outer, CLSCTX_INPROC_SERVER, iid, object);
}

TEST_F(RegistrationTest, Start_InTheMta_LocatorIsOurs) {
    const ComOwner<IWbemLocator> locator = createLocator();
    EXPECT_EQ(host().liveObjects(), LiveObjects{.locators = 1});
}

TEST_F(RegistrationTest, Start_InTheMta_CompilerIsOurs) {
    void* compiler = nullptr;
    ASSERT_EQ(create(CLSID_MofCompiler, IID_IMofCompiler, &compiler), S_OK);
    EXPECT_EQ(host().liveObjects(), LiveObjects{.compilers = 1});
    static_cast<IMofCompiler*>(compiler)->Release();
    EXPECT_EQ(host().liveObjects(), LiveObjects{});
}

TEST_F(RegistrationTest, Start_InAnSta_LocatorIsOurs) {
    LiveObjects live;
    std::thread([&] {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        {
            SimulatedHost own;
            EXPECT_EQ(own.start(), S_OK);
            void* locator = nullptr;
            EXPECT_EQ(create(CLSID_WbemLocator, IID_IWbemLocator, &locator), S_OK);
            live = own.liveObjects();
            if (locator != nullptr) static_cast<IWbemLocator*>(locator)->Release();
        }
        CoUninitialize();
    }).join();
    EXPECT_EQ(live, LiveObjects{.locators = 1});
}

TEST_F(RegistrationTest, Start_Twice_SaysSo) {
    EXPECT_EQ(host().start(), S_FALSE);
}

TEST_F(RegistrationTest, Stop_ThenCreate_GivesTheSystemsWmi) {
    host().stop();
    void* locator = nullptr;
    if (create(CLSID_WbemLocator, IID_IWbemLocator, &locator) == S_OK) {
        static_cast<IWbemLocator*>(locator)->Release();
    }
    EXPECT_EQ(host().trace().size(), 0U);
}

TEST_F(RegistrationTest, Stop_ThenStart_IsFoundAgain) {
    host().stop();
    EXPECT_EQ(host().start(), S_OK);
    createLocator();
    EXPECT_EQ(host().trace().size(), 1U);
}

TEST_F(RegistrationTest, SetLocatorFailure_CreationFails_WithTheResult) {
    host().setLocatorFailure(E_OUTOFMEMORY);
    void* locator = nullptr;
    EXPECT_EQ(create(CLSID_WbemLocator, IID_IWbemLocator, &locator), E_OUTOFMEMORY);
    EXPECT_EQ(locator, nullptr);
    host().setLocatorFailure(S_OK);
    EXPECT_NE(createLocator(), nullptr);
}

TEST_F(RegistrationTest, SetCompilerFailure_CreationFails_WithTheResult) {
    host().setCompilerFailure(REGDB_E_CLASSNOTREG);
    void* compiler = nullptr;
    EXPECT_EQ(create(CLSID_MofCompiler, IID_IMofCompiler, &compiler), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(compiler, nullptr);
}

TEST_F(RegistrationTest, Create_UnknownInterface_LeavesNothingAlive) {
    void* object = nullptr;
    EXPECT_EQ(create(CLSID_WbemLocator, IID_IWbemServices, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(host().liveObjects(), LiveObjects{});
}

TEST_F(RegistrationTest, CreateInstance_WithOuterObject_IsRefused) {
    void* found = nullptr;
    ASSERT_EQ(CoGetClassObject(CLSID_WbemLocator, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                               &found),
              S_OK);
    const ComOwner<IClassFactory> factory(static_cast<IClassFactory*>(found));
    void* object = nullptr;
    EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
}

}  // namespace
}  // namespace quista::test

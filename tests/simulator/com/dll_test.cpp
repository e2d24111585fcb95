// The simulator as a DLL: its exports, the sample hosts beside it, its end of endless clients.
#include <windows.h>

#include <wbemcli.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "simulator/simulator.h"

namespace quista::test {
namespace {

using simulator::LiveObjects;
using simulator::LoadError;
using simulator::Simulator;

constexpr LONG kInfinite = -1;

struct Destroyer {
    void operator()(Simulator* simulator) const { quistaDestroySimulator(simulator); }
};

class SimulatorDllTest : public ::testing::Test {
  protected:
    SimulatorDllTest() {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        simulator_.reset(quistaCreateSimulator());
        EXPECT_EQ(simulator_->start(), S_OK);
    }
    ~SimulatorDllTest() override {
        simulator_.reset();
        CoUninitialize();
    }

    IEnumWbemClassObject* enumerate(const wchar_t* className) {
        IWbemLocator* locator = nullptr;
        IWbemServices* services = nullptr;
        IEnumWbemClassObject* results = nullptr;
        void* created = nullptr;
        EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IWbemLocator, &created),
                  S_OK);
        locator = static_cast<IWbemLocator*>(created);
        BSTR name = SysAllocString(L"root\\wmi");
        EXPECT_EQ(
            locator->ConnectServer(name, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &services),
            S_OK);
        SysFreeString(name);
        name = SysAllocString(className);
        EXPECT_EQ(services->CreateInstanceEnum(name, 0x31, nullptr, &results), S_OK);
        SysFreeString(name);
        services->Release();
        locator->Release();
        return results;
    }

    [[noreturn]] void enumerateForEver() {
        IEnumWbemClassObject* results = enumerate(L"KORVADSM_LUNINFO");
        for (;;) {
            IWbemClassObject* object = nullptr;
            ULONG returned = 0;
            results->Next(kInfinite, 1, &object, &returned);
            if (object != nullptr) object->Release();
        }
    }

    std::unique_ptr<Simulator, Destroyer> simulator_;
};

TEST_F(SimulatorDllTest, ClassFilesByName_LieBesideTheDll) {
    LoadError error;
    ASSERT_TRUE(simulator_->load(L"standard", error));
    EXPECT_TRUE(simulator_->removeClassesOf(L"korvadsm", error));
    EXPECT_EQ(simulator_->countInstances(L"root\\wmi", L"KORVADSM_LUNINFO"), 0u);
    EXPECT_FALSE(simulator_->removeClassesOf(L"nothing", error));
    EXPECT_TRUE(simulator_->isSample(L"standard"));
}

TEST_F(SimulatorDllTest, Load_SampleHosts_ByName) {
    for (const wchar_t* name : {L"standard", L"degraded", L"empty", L"bare"}) {
        LoadError error;
        simulator_->clear();
        EXPECT_TRUE(simulator_->load(name, error)) << name << " line " << error.line;
    }
}

TEST_F(SimulatorDllTest, Load_Standard_HasLuns) {
    LoadError error;
    ASSERT_TRUE(simulator_->load(L"standard", error));
    EXPECT_GE(simulator_->countInstances(L"root\\wmi", L"KORVADSM_LUNINFO"), 6U);
    IEnumWbemClassObject* luns = enumerate(L"KORVADSM_LUNINFO");
    IWbemClassObject* lun = nullptr;
    ULONG returned = 0;
    EXPECT_EQ(luns->Next(kInfinite, 1, &lun, &returned), S_OK);
    EXPECT_EQ(simulator_->liveObjects(), (LiveObjects{.enumerators = 1, .objects = 1}));
    if (lun != nullptr) lun->Release();
    luns->Release();
    EXPECT_EQ(simulator_->liveObjects(), LiveObjects{});
}

TEST_F(SimulatorDllTest, GenerateHost_LoadsWithThatManyLuns) {
    std::wstring mof;
    quistaGenerateHost(25, 4, mof);
    LoadError error;
    ASSERT_TRUE(simulator_->loadText(mof, L"generated", error)) << error.line;
    EXPECT_EQ(simulator_->countInstances(L"root\\wmi", L"KORVADSM_LUNINFO"), 25U);
}

TEST_F(SimulatorDllTest, EndProcessAfterNextCalls_EndsAnEndlessClient) {
    LoadError error;
    ASSERT_TRUE(simulator_->load(L"standard", error));
    simulator_->endProcessAfterNextCalls(1000, 7);
    EXPECT_EXIT(enumerateForEver(), ::testing::ExitedWithCode(7), "");
}

TEST_F(SimulatorDllTest, EndProcessAfterNextCalls_Zero_SwitchesItOff) {
    LoadError error;
    ASSERT_TRUE(simulator_->load(L"standard", error));
    simulator_->endProcessAfterNextCalls(1, 7);
    simulator_->endProcessAfterNextCalls(0, 7);
    IEnumWbemClassObject* luns = enumerate(L"KORVADSM_LUNINFO");
    for (int i = 0; i < 3; ++i) {
        IWbemClassObject* lun = nullptr;
        ULONG returned = 0;
        EXPECT_EQ(luns->Next(kInfinite, 1, &lun, &returned), S_OK);
        if (lun != nullptr) lun->Release();
    }
    luns->Release();
}

}  // namespace
}  // namespace quista::test

// The process-wide session state behind the exports.
#include "frame/session.h"
#include "tests/frame/session_test.h"
#include "tests/wmi/recorded_services.h"

namespace quista::test {
namespace {

// COM interfaces have no virtual destructor; these objects live on the stack.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Notes its release, and can do nothing else.
class ReleaseNote final : public IUnknown {
  public:
    ReleaseNote(std::string name, std::vector<std::string>& released)
        : name_(std::move(name)), released_(released) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override {
        released_.push_back(name_);
        return 0;
    }

    /// Stands in for an object of which only IUnknown's methods are called.
    template <typename Interface>
    Interface* as() {
        return static_cast<Interface*>(static_cast<IUnknown*>(this));
    }

  private:
    std::string name_;
    std::vector<std::string>& released_;
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

class SessionStateTest : public SessionTest {
  protected:
    static void expectClosed() {
        EXPECT_EQ(gLocator, nullptr);
        EXPECT_EQ(gServices, nullptr);
        EXPECT_EQ(gCimv2Services, nullptr);
        EXPECT_EQ(gMofCompiler, nullptr);
    }
};

TEST_F(SessionStateTest, ClosedAtLoadAndAfterUninitialize) {
    expectClosed();
    makeHealthy();
    openSession();
    closeSession();
    expectClosed();
}

TEST_F(SessionStateTest, OpenSession_HasLocatorAndBothConnections) {
    makeHealthy();
    EXPECT_EQ(openSession(), DSM_SUCCESS);
    EXPECT_NE(gLocator, nullptr);
    EXPECT_NE(gServices, nullptr);
    EXPECT_NE(gCimv2Services, nullptr);
    EXPECT_NE(gServices, gCimv2Services);
    EXPECT_EQ(gMofCompiler, nullptr);
}

TEST_F(SessionStateTest, PartlyOpenSession_HasTheOtherConnection) {
    makeHealthy();
    host.failConnect(kWmi, result(WBEM_E_ACCESS_DENIED));
    openSession();
    EXPECT_NE(gLocator, nullptr);
    EXPECT_EQ(gServices, nullptr);
    EXPECT_NE(gCimv2Services, nullptr);
}

TEST_F(SessionStateTest, Count_IsThatOfTheInitialisation) {
    addMpioDisks(7);
    addVendorClasses();
    openSession();
    EXPECT_EQ(gMpioLunCount, 7u);
}

TEST_F(SessionStateTest, FailedCount_LeavesTheEarlierOne) {
    addMpioDisks(7);
    addVendorClasses();
    openSession();
    host.failEnumeration(L"MPIO_DISK_INFO", result(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(openSession(), DSM_WMI_FAILURE);
    EXPECT_EQ(gMpioLunCount, 7u);
}

TEST_F(SessionStateTest, Compiler_StaysUntilUninitialize) {
    addMpioDisks();
    openSession();
    EXPECT_NE(gMofCompiler, nullptr);
    closeSession();
    EXPECT_EQ(gMofCompiler, nullptr);
}

TEST_F(SessionStateTest, Check_AsksForNoObject) {
    makeHealthy();
    openSession();
    const RecordedServices services;
    EXPECT_EQ(DSMCheckForKORVADSMClasses(), 0u);
    EXPECT_THAT(services.calls(), testing::ElementsAre(ServiceCall{
                                      L"GetObject", L"KORVADSM_LUNINFO", L"", 0, L"", L"", true}));
}

TEST_F(SessionStateTest, Uninitialize_ReleasesInOrder) {
    std::vector<std::string> released;
    ReleaseNote locator("locator", released);
    ReleaseNote compiler("compiler", released);
    ReleaseNote services("wmi", released);
    ReleaseNote cimv2("cimv2", released);
    gLocator = locator.as<IWbemLocator>();
    gMofCompiler = compiler.as<IMofCompiler>();
    gServices = services.as<IWbemServices>();
    gCimv2Services = cimv2.as<IWbemServices>();
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_THAT(released, testing::ElementsAre("locator", "compiler", "wmi", "cimv2"));
    expectClosed();
}

TEST_F(SessionStateTest, Uninitialize_ReleasesTheOnlyConnection) {
    std::vector<std::string> released;
    ReleaseNote cimv2("cimv2", released);
    gCimv2Services = cimv2.as<IWbemServices>();
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_EQ(DSMUninitialize(), 0u);
    EXPECT_THAT(released, testing::ElementsAre("cimv2"));
}

}  // namespace
}  // namespace quista::test

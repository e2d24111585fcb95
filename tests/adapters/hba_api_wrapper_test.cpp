// The wrapper of the HBA API, which no export shows by itself.
#include "adapters/hba_api_wrapper.h"

#include <type_traits>

#include "tests/adapters/fc_adapter_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

static_assert(std::has_virtual_destructor_v<HBAAPIWrapper>);
static_assert(!std::is_copy_constructible_v<HBAAPIWrapper>);

constexpr DWORD kModuleNotFound = 126;
constexpr DWORD kProcedureNotFound = 127;
constexpr DWORD kInitialisationFailed = 0x80004005;

class HbaApiWrapperTest : public testing::Test {
  protected:
    HbaApiWrapperTest() = default;

    /// Every operation of an unusable wrapper gives its fallback and leaves its outputs alone.
    static void expectUnusable(HBAAPIWrapper& api) {
        EXPECT_FALSE(api.isUsable());
        EXPECT_EQ(api.numberOfAdapters(), 0u);
        EXPECT_EQ(api.openAdapter("fc-a"), 0u);
        api.refreshInformation(1);
        char name[256] = "untouched";
        EXPECT_EQ(api.adapterName(0, name), kError);
        EXPECT_STREQ(name, "untouched");
        hba::AdapterAttributes adapter{};
        EXPECT_EQ(api.adapterAttributes(1, &adapter), kError);
        hba::PortAttributes port{};
        EXPECT_EQ(api.portAttributes(1, 0, &port), kError);
        hba::FcpTargetMapping mapping{.NumberOfEntries = 1, .entry = {}};
        EXPECT_EQ(api.fcpTargetMapping(1, &mapping), kError);
    }

    WorkFolder folder;
    LogFile log;
};

TEST_F(HbaApiWrapperTest, MissingLibrary) {
    HBAAPIWrapper api;
    EXPECT_EQ(api.status(), kModuleNotFound);
    expectUnusable(api);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"Load Library failed", DSM_HBA_API_LIBRARY_LOAD_FAILED}));
}

TEST_F(HbaApiWrapperTest, MissingFunctions) {
    for (const char* function : {"HBA_LoadLibrary", "HBA_SendScsiInquiry"}) {
        const HbaLibrary library(function);
        library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, {}}});
        HBAAPIWrapper api;
        EXPECT_EQ(api.status(), kProcedureNotFound);
        expectUnusable(api);
        EXPECT_TRUE(library->calls().empty());
    }
    EXPECT_FALSE(log.exists());
}

TEST_F(HbaApiWrapperTest, InitialisationFails) {
    const HbaLibrary library;
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, {}}});
    library->prescribe({.function = "HBA_LoadLibrary", .result = kNotSupported});
    HBAAPIWrapper api;
    EXPECT_EQ(api.status(), kInitialisationFailed);
    expectUnusable(api);
    EXPECT_THAT(library->calls(), ElementsAre("HBA_LoadLibrary"));
    EXPECT_FALSE(log.exists());
}

TEST_F(HbaApiWrapperTest, FreedAtTheEndOfItsLife) {
    HbaLibrary library;
    {
        const HBAAPIWrapper api;
        EXPECT_TRUE(api.isUsable());
        EXPECT_EQ(api.status(), 0u);
        EXPECT_THAT(library->calls(), ElementsAre("HBA_LoadLibrary"));
        library.unload();
        EXPECT_TRUE(isLoaded(L"hbaapi.dll"));
    }
    EXPECT_FALSE(isLoaded(L"hbaapi.dll"));
}

TEST_F(HbaApiWrapperTest, OpensEachAdapterOnce) {
    const HbaLibrary library;
    library->setAdapters({{"fc-a", {}, {}}, {"fc-b", {}, {}}});
    {
        HBAAPIWrapper api;
        EXPECT_EQ(api.openAdapter("fc-b"), 2u);
        EXPECT_EQ(api.openAdapter("fc-a"), 1u);
        EXPECT_EQ(api.openAdapter("fc-b"), 2u);
        EXPECT_EQ(api.openAdapter("fc-b"), 2u);
    }
    EXPECT_THAT(library->calls(), ElementsAre("HBA_LoadLibrary", "HBA_OpenAdapter fc-b",
                                              "HBA_OpenAdapter fc-a", "HBA_FreeLibrary"));
}

TEST_F(HbaApiWrapperTest, FailedOpeningIsNotKept) {
    const HbaLibrary library;
    library->setAdapters({{"fc-a", {}, {}}});
    library->prescribe({.function = "HBA_OpenAdapter", .result = 0});
    HBAAPIWrapper api;
    EXPECT_EQ(api.openAdapter("fc-a"), 0u);
    EXPECT_EQ(api.openAdapter("fc-a"), 1u);
    EXPECT_EQ(api.openAdapter("unknown"), 0u);
}

TEST_F(HbaApiWrapperTest, PassesCallsAndResultsOn) {
    const HbaLibrary library;
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, {{3, 4}}}});
    HBAAPIWrapper api;
    EXPECT_EQ(api.numberOfAdapters(), 1u);
    char name[256] = {};
    EXPECT_EQ(api.adapterName(0, name), kOk);
    EXPECT_STREQ(name, "fc-a");
    hba::AdapterAttributes adapter{};
    EXPECT_EQ(api.adapterAttributes(1, &adapter), kOk);
    EXPECT_EQ(adapter.NumberOfPorts, 1u);
    hba::PortAttributes attributes{};
    EXPECT_EQ(api.portAttributes(1, 0, &attributes), kOk);
    EXPECT_STREQ(attributes.OSDeviceName, "\\\\.\\Scsi1:");
    hba::FcpTargetMapping mapping{.NumberOfEntries = 1, .entry = {}};
    EXPECT_EQ(api.fcpTargetMapping(1, &mapping), kOk);
    EXPECT_EQ(mapping.entry[0].ScsiIdentifier.ScsiBusNumber, 3u);
    EXPECT_EQ(mapping.entry[0].ScsiIdentifier.ScsiTargetNumber, 4u);
    library->prescribe({.function = "HBA_GetFcpTargetMapping", .result = kBusy, .occurrence = 2});
    EXPECT_EQ(api.fcpTargetMapping(1, &mapping), kBusy);
}

}  // namespace
}  // namespace quista::test

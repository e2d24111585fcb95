// Loading the HBA API library: once per lookup, whole or not at all.
#include "tests/adapters/fc_adapter_test.h"
#include "tests/support/import_patch.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

const FoundAdapter kUnusable{kError, kNothing, kNothing};

const std::vector<std::string> kFunctions = {"HBA_LoadLibrary",
                                             "HBA_FreeLibrary",
                                             "HBA_GetNumberOfAdapters",
                                             "HBA_OpenAdapter",
                                             "HBA_CloseAdapter",
                                             "HBA_RefreshInformation",
                                             "HBA_GetAdapterName",
                                             "HBA_GetAdapterAttributes",
                                             "HBA_GetAdapterPortAttributes",
                                             "HBA_GetFcpTargetMapping",
                                             "HBA_GetPortAttributesByWWN",
                                             "HBA_SendScsiInquiry"};

const LogLine kLoadFailed{"Load Library failed", DSM_HBA_API_LIBRARY_LOAD_FAILED};

/// A machine without the stand-in, until the test loads one.
class FcLibraryTest : public testing::Test {
  protected:
    FcLibraryTest() = default;

    WorkFolder folder;
    LogFile log;
    DebugOutputCapture debug;
};

TEST_F(FcLibraryTest, MissingLibrary) {
    ASSERT_FALSE(isLoaded(L"hbaapi.dll"));
    EXPECT_EQ(findFcAdapter(1, 2, 3), kUnusable);
    EXPECT_THAT(log.lines(), ElementsAre(kLoadFailed));
    EXPECT_THAT(debug.texts(),
                ElementsAre(L"Inside GetFCPAdapterInfo", L"Portnum 1 busnum 2 targetnum 3\n"));
}

TEST_F(FcLibraryTest, LibraryThatCannotBeLoaded) {
    writeFile(L"hbaapi.dll", "no library");
    EXPECT_EQ(findFcAdapter(1, 2, 3), kUnusable);
    EXPECT_THAT(log.lines(), ElementsAre(kLoadFailed));
}

TEST_F(FcLibraryTest, NumbersGoToTheDebuggerAsSignedOnes) {
    findFcAdapter(0xFFFFFFFF, 0x80000000, 0);
    EXPECT_EQ(debug.texts().back(), L"Portnum -1 busnum -2147483648 targetnum 0\n");
}

/// The functions that were looked up, in order.
std::vector<std::string> gLookedUp;

FARPROC WINAPI recordLookUp(HMODULE module, const char* name) {
    gLookedUp.emplace_back(name);
    return GetProcAddress(module, name);
}

TEST_F(FcLibraryTest, OrderOfResolution) {
    const HbaLibrary library;
    const ImportPatch patch("GetProcAddress", recordLookUp);
    gLookedUp.clear();
    findFcAdapter(1, 0, 0);
    EXPECT_EQ(gLookedUp, kFunctions);
}

/// All functions must be there, those too that are never called. Resolution stops at the first that
/// is missing: the library is freed when its own function for that was found by then.
TEST_F(FcLibraryTest, EveryFunctionIsNeeded) {
    for (std::size_t i = 0; i < kFunctions.size(); ++i) {
        SCOPED_TRACE("without " + kFunctions[i]);
        HbaLibrary library(kFunctions[i]);
        library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, {{0, 0}}}});
        const ImportPatch patch("GetProcAddress", recordLookUp);
        gLookedUp.clear();
        EXPECT_EQ(findFcAdapter(1, 0, 0), kUnusable);
        EXPECT_EQ(gLookedUp.size(), i + 1);
        const bool freed = i >= 2;
        EXPECT_EQ(library->calls(),
                  freed ? std::vector<std::string>{"HBA_FreeLibrary"} : std::vector<std::string>{});
        library.unload();
        EXPECT_FALSE(isLoaded(L"hbaapi.dll"));
    }
    EXPECT_FALSE(log.exists());
}

TEST_F(FcLibraryTest, InitialisationFails) {
    for (const std::uint32_t status : {kError, kNotSupported, kStaleData, 0x80000000u}) {
        HbaLibrary library;
        library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, {{0, 0}}}});
        library->prescribe({.function = "HBA_LoadLibrary", .result = status});
        EXPECT_EQ(findFcAdapter(1, 0, 0), kUnusable);
        EXPECT_THAT(library->calls(), ElementsAre("HBA_LoadLibrary", "HBA_FreeLibrary"));
        library.unload();
        EXPECT_FALSE(isLoaded(L"hbaapi.dll"));
    }
    EXPECT_FALSE(log.exists());
}

TEST_F(FcLibraryTest, NoAdapters) {
    const HbaLibrary library;
    EXPECT_EQ(findFcAdapter(1, 0, 0), kUnusable);
    EXPECT_THAT(library->calls(),
                ElementsAre("HBA_LoadLibrary", "HBA_GetNumberOfAdapters", "HBA_FreeLibrary"));
    EXPECT_EQ(debug.texts().size(), 2u);
    EXPECT_FALSE(log.exists());
}

/// Every lookup loads the library for itself and unloads it again. Adapters are opened and never
/// closed: their handles lapse with the library.
TEST_F(FcLibraryTest, EachLookupLoadsTheLibrary) {
    HbaLibrary library;
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, {{0, 0}}}});
    const std::vector<std::string> lookup = {
        "HBA_LoadLibrary",          "HBA_GetNumberOfAdapters",
        "HBA_GetAdapterName 0",     "HBA_OpenAdapter fc-a",
        "HBA_RefreshInformation 1", "HBA_GetAdapterAttributes 1",
        "HBA_RefreshInformation 1", "HBA_GetAdapterPortAttributes 1 0",
        "HBA_RefreshInformation 1", "HBA_GetFcpTargetMapping 1 1",
        "HBA_FreeLibrary"};
    EXPECT_EQ(findFcAdapter(1, 0, 0), (FoundAdapter{kOk, wwnText(), "fc-a"}));
    EXPECT_EQ(library->calls(), lookup);

    EXPECT_EQ(findFcAdapter(1, 0, 0), (FoundAdapter{kOk, wwnText(), "fc-a"}));
    std::vector<std::string> twice = lookup;
    twice.insert(twice.end(), lookup.begin(), lookup.end());
    EXPECT_EQ(library->calls(), twice);

    library.unload();
    EXPECT_FALSE(isLoaded(L"hbaapi.dll"));
    EXPECT_FALSE(log.exists());
}

}  // namespace
}  // namespace quista::test

// The search over adapters, ports and targets.
#include "tests/adapters/fc_adapter_test.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class FcSearchTest : public FcAdapterTest {
  protected:
    FcSearchTest() = default;
};

TEST_F(FcSearchTest, DebuggerLines) {
    library->setAdapters(
        {{"fc-a", {port("\\\\.\\Scsi7:", 0x0A)}, {{0, 0}}},
         {"fc-b", {port("\\\\.\\Scsi2:", 0x0B), port("\\\\.\\Scsi3:", 0x0C)}, {{0, 1}, {1, 4}}}});
    EXPECT_EQ(findFcAdapter(3, 1, 4), (FoundAdapter{kOk, wwnText(0x0C), "fc-b"}));
    EXPECT_THAT(debugTexts(),
                ElementsAre(L"Inside GetFCPAdapterInfo", L"Portnum 3 busnum 1 targetnum 4\n",
                            L"numberOfAdapters 2\n",                                            //
                            L"Adapter Index 0\n", L"Adapter name ", L"fc-a",                    //
                            L"Number of ports 1\n", L"Getting portAttributes for port 0\n",     //
                            L"Got port attributes for port 0",                                  //
                            L"OSDeviceName ", L"\\\\.\\Scsi7:",                                 //
                            L"Adapter Index 1\n", L"Adapter name ", L"fc-b",                    //
                            L"Number of ports 2\n", L"Getting portAttributes for port 0\n",     //
                            L"Got port attributes for port 0",                                  //
                            L"OSDeviceName ", L"\\\\.\\Scsi2:",                                 //
                            L"Getting portAttributes for port 1\n",                             //
                            L"Got port attributes for port 1",                                  //
                            L"OSDeviceName ", L"\\\\.\\Scsi3:",                                 //
                            L"Got FcpTargetMapping. NumEntries = 2",                            //
                            L"pMapping  ScsiBusNumber = 0", L"pMapping  ScsiTargetNumber = 1",  //
                            L"pMapping  ScsiBusNumber = 1", L"pMapping  ScsiTargetNumber = 4",  //
                            L"hbaAddress\n", L"21:00:00:24:ff:00:00:0c",                        //
                            L"hbaName", L"fc-b"));
    EXPECT_FALSE(log.exists());
}

TEST_F(FcSearchTest, AdapterOnTheSecondIndex) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi2:", 0x0A)}, {{0, 1}}},
                          {"fc-b", {port("\\\\.\\Scsi3:", 0x0B)}, {{0, 1}}}});
    EXPECT_EQ(findFcAdapter(3, 0, 1), (FoundAdapter{kOk, wwnText(0x0B), "fc-b"}));
    EXPECT_EQ(countCalls("HBA_OpenAdapter fc-a"), 1u);
    EXPECT_EQ(countCalls("HBA_OpenAdapter fc-b"), 1u);
    EXPECT_EQ(countCalls("HBA_CloseAdapter 1"), 0u);
    EXPECT_EQ(countCalls("HBA_CloseAdapter 2"), 0u);
}

TEST_F(FcSearchTest, AMatchEndsTheSearch) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi3:", 0x0A)}, {{0, 1}}},
                          {"fc-b", {port("\\\\.\\Scsi3:", 0x0B)}, {{0, 1}}}});
    EXPECT_EQ(findFcAdapter(3, 0, 1), (FoundAdapter{kOk, wwnText(0x0A), "fc-a"}));
    EXPECT_THAT(library->calls(), Not(Contains("HBA_GetAdapterName 1")));
}

TEST_F(FcSearchTest, NoMatch) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi3:")}, {{0, 1}, {5, 2}}}, {"fc-b", {}, {}}});
    const FoundAdapter nothing{kOk, kNothing, kNothing};
    EXPECT_EQ(findFcAdapter(4, 0, 1), nothing);
    EXPECT_EQ(findFcAdapter(3, 0, 2), nothing);
    EXPECT_EQ(findFcAdapter(3, 5, 1), nothing);
    EXPECT_EQ(countCalls("HBA_GetAdapterName 1"), 3u);
    EXPECT_FALSE(log.exists());
}

/// Kept: the number is looked for anywhere in the device name.
TEST_F(FcSearchTest, PortNumberAsPartOfAnother) {
    for (const char* device : {"\\\\.\\Scsi1:", "\\\\.\\Scsi12:", "\\\\.\\Scsi21:", "1", "x1y"}) {
        library->setAdapters({{"fc-a", {port(device)}, {{0, 1}}}});
        EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, wwnText(), "fc-a"})) << device;
    }
    for (const char* device : {"\\\\.\\Scsi2:", "", "scsi"}) {
        library->setAdapters({{"fc-a", {port(device)}, {{0, 1}}}});
        EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, kNothing, kNothing})) << device;
    }
}

TEST_F(FcSearchTest, PortNumberIsUnsigned) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi4294967295:")}, {{0, 1}}}});
    EXPECT_EQ(findFcAdapter(0xFFFFFFFF, 0, 1), (FoundAdapter{kOk, wwnText(), "fc-a"}));
}

TEST_F(FcSearchTest, LastMatchingPortWins) {
    library->setAdapters(
        {{"fc-a",
          {port("\\\\.\\Scsi1:", 0x0A), port("\\\\.\\Scsi10:", 0x0B), port("\\\\.\\Scsi2:", 0x0C)},
          {{0, 1}}}});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, wwnText(0x0B), "fc-a"}));
    EXPECT_EQ(countCalls("HBA_GetAdapterPortAttributes 1 2"), 1u);
    EXPECT_EQ(countDebugTexts(L"hbaAddress\n"), 2u);
    EXPECT_EQ(countDebugTexts(L"hbaName"), 1u);
}

TEST_F(FcSearchTest, FirstMatchingEntryEndsTheMapping) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, {{0, 1}, {0, 1}, {0, 2}}}});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, wwnText(), "fc-a"}));
    EXPECT_EQ(countDebugTexts(L"pMapping  ScsiTargetNumber = 1"), 1u);
    EXPECT_EQ(countDebugTexts(L"pMapping  ScsiTargetNumber = 2"), 0u);
    EXPECT_EQ(countDebugTexts(L"hbaAddress\n"), 1u);
}

TEST_F(FcSearchTest, WwnIsLowerCaseHexadecimal) {
    library->setAdapters({{"fc-a",
                           {{"\\\\.\\Scsi1:", {0x00, 0x0F, 0xF0, 0xAB, 0xCD, 0xEF, 0x12, 0xFF}}},
                           {{0, 1}}}});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, "00:0f:f0:ab:cd:ef:12:ff", "fc-a"}));
}

/// An adapter that appears twice under one name is opened once.
TEST_F(FcSearchTest, OpenAdaptersAreKept) {
    library->setAdapters(
        {{"fc-a", {port("\\\\.\\Scsi2:")}, {}}, {"fc-a", {}, {}}, {"fc-a", {}, {}}});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, kNothing, kNothing}));
    EXPECT_EQ(countCalls("HBA_OpenAdapter fc-a"), 1u);
    EXPECT_EQ(countCalls("HBA_GetAdapterAttributes 1"), 3u);
}

// ---- Failures

TEST_F(FcSearchTest, AdapterWithoutName) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi2:")}, {}},
                          {"fc-b", {port("\\\\.\\Scsi1:")}, {{0, 1}}},
                          {"fc-c", {port("\\\\.\\Scsi1:")}, {{0, 1}}}});
    library->prescribe({.function = "HBA_GetAdapterName", .result = kBusy, .occurrence = 2});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kBusy, kNothing, kNothing}));
    EXPECT_THAT(
        log.lines(),
        ElementsAre(LogLine{"QUISTA:GetFCAdapterInfo - could not get adapter name from HBA API",
                            DSM_HBA_API_LIBRARY_LOAD_FAILED}));
    EXPECT_EQ(library->calls().back(), "HBA_FreeLibrary");
    EXPECT_EQ(countDebugTexts(L"Adapter Index 1\n"), 0u);
    EXPECT_EQ(countCalls("HBA_GetAdapterName 2"), 0u);
}

TEST_F(FcSearchTest, AdapterThatCannotBeOpened) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, {{0, 1}}}, {"fc-b", {}, {}}});
    library->prescribe({.function = "HBA_OpenAdapter", .result = 0});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kError, kNothing, kNothing}));
    EXPECT_THAT(
        log.lines(),
        ElementsAre(LogLine{"QUISTA:GetFCAdapterInfo - could not get adapter handle from HBA API",
                            DSM_HBA_API_LIBRARY_LOAD_FAILED}));
    EXPECT_EQ(library->calls().back(), "HBA_FreeLibrary");
    EXPECT_EQ(countCalls("HBA_GetAdapterName 1"), 0u);
    EXPECT_EQ(debugTexts().back(), L"fc-a");
}

TEST_F(FcSearchTest, FailedAttributesSkipTheAdapter) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:", 0x0A)}, {{0, 1}}},
                          {"fc-b", {port("\\\\.\\Scsi1:", 0x0B)}, {{0, 1}}}});
    library->prescribe({.function = "HBA_GetAdapterAttributes", .result = kBusy});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, wwnText(0x0B), "fc-b"}));
    EXPECT_EQ(countCalls("HBA_GetAdapterPortAttributes 1 0"), 0u);
    EXPECT_EQ(countDebugTexts(L"Number of ports 1\n"), 1u);
    EXPECT_FALSE(log.exists());
}

TEST_F(FcSearchTest, FailedPortIsSkipped) {
    library->setAdapters(
        {{"fc-a", {port("\\\\.\\Scsi1:", 0x0A), port("\\\\.\\Scsi1:", 0x0B)}, {{0, 1}}}});
    library->prescribe({.function = "HBA_GetAdapterPortAttributes", .result = kBusy});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, wwnText(0x0B), "fc-a"}));
    EXPECT_EQ(countCalls("HBA_GetAdapterPortAttributes 1 0"), 1u);
    EXPECT_EQ(countDebugTexts(L"OSDeviceName "), 1u);
    EXPECT_FALSE(log.exists());
}

TEST_F(FcSearchTest, FailedMappingSkipsThePort) {
    library->setAdapters(
        {{"fc-a", {port("\\\\.\\Scsi1:", 0x0A), port("\\\\.\\Scsi1:", 0x0B)}, {{0, 1}}}});
    library->prescribe({.function = "HBA_GetFcpTargetMapping", .result = kBusy});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, wwnText(0x0B), "fc-a"}));
    EXPECT_EQ(countDebugTexts(L"Got FcpTargetMapping. NumEntries = 1"), 1u);
    EXPECT_FALSE(log.exists());
}

/// The result is that of the last call made, also when another port matched.
TEST_F(FcSearchTest, LastStatusAfterAMatch) {
    library->setAdapters(
        {{"fc-a", {port("\\\\.\\Scsi1:", 0x0A), port("\\\\.\\Scsi1:", 0x0B)}, {{0, 1}}}});
    library->prescribe(
        {.function = "HBA_GetAdapterPortAttributes", .result = kBusy, .occurrence = 2});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kBusy, wwnText(0x0A), "fc-a"}));

    library->prescribe(
        {.function = "HBA_GetFcpTargetMapping", .result = kNotSupported, .occurrence = 3});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kNotSupported, wwnText(0x0A), "fc-a"}));
}

TEST_F(FcSearchTest, LastStatusWithoutAMatch) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi2:")}, {}}, {"fc-b", {}, {}}});
    library->prescribe(
        {.function = "HBA_GetAdapterAttributes", .result = kNotSupported, .occurrence = 2});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kNotSupported, kNothing, kNothing}));
    // A later success takes the place of an earlier failure.
    library->prescribe({.function = "HBA_GetAdapterAttributes", .result = kBusy, .occurrence = 3});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, kNothing, kNothing}));
}

}  // namespace
}  // namespace quista::test

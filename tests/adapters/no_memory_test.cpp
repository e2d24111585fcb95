// The lookups without memory for their records.
#include "adapters/hba_api.h"
#include "tests/adapters/failing_new.h"
#include "tests/adapters/fc_adapter_test.h"
#include "tests/adapters/iscsi_adapter_test.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

class FcNoMemoryTest : public FcAdapterTest {
  protected:
    FcNoMemoryTest() {
        library->setAdapters(
            {{"fc-a", {port("\\\\.\\Scsi1:", 0x0A), port("\\\\.\\Scsi1:", 0x0B)}, {{0, 1}}}});
    }

    /// The lookup fails before the first adapter, and frees the library all the same.
    void expectFailure(std::size_t size, const std::string& place) {
        const FailingNew failing(size);
        EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kError, kNothing, kNothing}));
        EXPECT_EQ(failing.failures(), 1u);
        EXPECT_THAT(log.lines(), ElementsAre(LogLine{place, DSM_HBA_API_LIBRARY_LOAD_FAILED}));
        EXPECT_THAT(library->calls(),
                    ElementsAre("HBA_LoadLibrary", "HBA_GetNumberOfAdapters", "HBA_FreeLibrary"));
        EXPECT_EQ(debugTexts().back(), L"numberOfAdapters 1\n");
    }
};

TEST_F(FcNoMemoryTest, AdapterAttributes) {
    expectFailure(sizeof(hba::AdapterAttributes),
                  "QUISTA:GetFCAdapterInfo - could not get adapterAttributes from HBA API");
}

TEST_F(FcNoMemoryTest, PortAttributes) {
    expectFailure(sizeof(hba::PortAttributes),
                  "QUISTA:GetFCAdapterInfo - could not get port attributes from HBA API");
}

/// A port whose mapping there is no memory for is skipped; the next one is examined.
TEST_F(FcNoMemoryTest, HugeMapping) {
    library->prescribe(
        {.function = "HBA_GetFcpTargetMapping", .result = kMoreData, .reported = 0xFFFFFFFF});
    const std::size_t size = 8 + (std::size_t{0xFFFFFFFF} + 50) * sizeof(hba::FcpScsiEntry);
    const FailingNew failing(size);
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, wwnText(0x0B), "fc-a"}));
    EXPECT_EQ(failing.failures(), 1u);
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 1"), 2u);
}

TEST_F(FcNoMemoryTest, MappingOfTheLastPort) {
    library->prescribe({.function = "HBA_GetFcpTargetMapping",
                        .result = kMoreData,
                        .occurrence = 2,
                        .reported = 1000});
    const FailingNew failing(8 + 1050 * sizeof(hba::FcpScsiEntry));
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kMoreData, wwnText(0x0A), "fc-a"}));
    EXPECT_EQ(failing.failures(), 1u);
    EXPECT_FALSE(log.exists());
}

class IscsiNoMemoryTest : public IscsiAdapterTest {
  protected:
    IscsiNoMemoryTest() { setPath(mapping(), {L"10.0.0.1"}); }
};

TEST_F(IscsiNoMemoryTest, Mappings) {
    library->prescribe({.function = kMappingsFunction, .result = 122, .size = 34567});
    const FailingNew failing(34567);
    EXPECT_EQ(findSession(), (FoundSession{kDiscoveryFailed, kUntouched, kUntouched}));
    EXPECT_EQ(failing.failures(), 1u);
    EXPECT_THAT(log.lines(), ElementsAre(kMappingsFailed));
    EXPECT_EQ(library->calls().size(), 1u);
}

TEST_F(IscsiNoMemoryTest, Sessions) {
    library->prescribe({.function = kSessionsFunction, .result = 122, .size = 34567});
    const FailingNew failing(34567);
    EXPECT_EQ(findSession(), (FoundSession{kDiscoveryFailed, kUntouched, kUntouched}));
    EXPECT_EQ(failing.failures(), 1u);
    EXPECT_THAT(log.lines(), ElementsAre(kSessionsFailed));
    EXPECT_EQ(library->calls().back(), "GetIScsiSessionListW sizing");
}

}  // namespace
}  // namespace quista::test

// Stale answers, and target mappings of any size.
#include <algorithm>

#include "tests/adapters/fc_adapter_test.h"

namespace quista::test {
namespace {

/// A number of targets, of which only the last is target 100.
std::vector<HbaTarget> targets(std::uint32_t count) {
    std::vector<HbaTarget> list;
    for (std::uint32_t i = 1; i < count; ++i) list.push_back({0, 1000 + i});
    list.push_back({0, 100});
    return list;
}

const FoundAdapter kFound{kOk, wwnText(), "fc-a"};

/// One adapter with one port, 1, and a mapping whose last entry is target 100.
class FcRetryTest : public FcAdapterTest {
  protected:
    FcRetryTest() { setTargets(1); }

    void setTargets(std::uint32_t count) {
        library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, targets(count)}});
    }
    void answer(const std::string& function, std::uint32_t status, unsigned count,
                unsigned occurrence = 1) {
        library->prescribe(
            {.function = function, .result = status, .occurrence = occurrence, .count = count});
    }
    /// The calls that follow the opening of the adapter, without the release of the library.
    std::vector<std::string> attempts() const {
        const std::vector<std::string> calls = library->calls();
        return {calls.begin() + 4, calls.end() - 1};
    }
    std::size_t entriesRead() const {
        return static_cast<std::size_t>(
            std::ranges::count_if(debugTexts(), [](const std::wstring& text) {
                return text.starts_with(L"pMapping  ScsiTargetNumber");
            }));
    }

    static FoundAdapter nothing(std::uint32_t status) { return {status, kNothing, kNothing}; }
};

std::vector<std::string> repeated(const std::vector<std::string>& calls, std::size_t times) {
    std::vector<std::string> result;
    for (std::size_t i = 0; i < times; ++i) result.insert(result.end(), calls.begin(), calls.end());
    return result;
}

std::vector<std::string> joined(std::vector<std::string> first,
                                const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

const std::vector<std::string> kAdapter = {"HBA_RefreshInformation 1",
                                           "HBA_GetAdapterAttributes 1"};
const std::vector<std::string> kPort = {"HBA_RefreshInformation 1",
                                        "HBA_GetAdapterPortAttributes 1 0"};
const std::vector<std::string> kMapping = {"HBA_RefreshInformation 1",
                                           "HBA_GetFcpTargetMapping 1 1"};

/// Kept: stale attributes of an adapter are not asked for again.
TEST_F(FcRetryTest, StaleAdapterIsNotRetried) {
    answer("HBA_GetAdapterAttributes", kStaleData, 1);
    EXPECT_EQ(findFcAdapter(1, 0, 100), nothing(kStaleData));
    EXPECT_EQ(attempts(), kAdapter);
}

TEST_F(FcRetryTest, StalePortIsRetried) {
    answer("HBA_GetAdapterPortAttributes", kStaleData, 20);
    EXPECT_EQ(findFcAdapter(1, 0, 100), kFound);
    EXPECT_EQ(attempts(), joined(kAdapter, joined(repeated(kPort, 21), kMapping)));
    EXPECT_EQ(countDebugTexts(L"Got port attributes for port 0"), 21u);
    EXPECT_EQ(countDebugTexts(L"Getting portAttributes for port 0\n"), 1u);
}

TEST_F(FcRetryTest, PortThatStaysStale) {
    answer("HBA_GetAdapterPortAttributes", kStaleData, 0);
    EXPECT_EQ(findFcAdapter(1, 0, 100), nothing(kStaleData));
    EXPECT_EQ(attempts(), joined(kAdapter, repeated(kPort, kAttempts)));
}

TEST_F(FcRetryTest, OtherFailuresOfAPortAreFinal) {
    answer("HBA_GetAdapterPortAttributes", kStaleData, 3);
    answer("HBA_GetAdapterPortAttributes", kBusy, 1, 4);
    EXPECT_EQ(findFcAdapter(1, 0, 100), nothing(kBusy));
    EXPECT_EQ(attempts(), joined(kAdapter, repeated(kPort, 4)));
}

TEST_F(FcRetryTest, StaleMappingIsRetried) {
    answer("HBA_GetFcpTargetMapping", kStaleData, 20);
    EXPECT_EQ(findFcAdapter(1, 0, 100), kFound);
    EXPECT_EQ(attempts(), joined(kAdapter, joined(kPort, repeated(kMapping, 21))));
}

TEST_F(FcRetryTest, MappingThatStaysStale) {
    answer("HBA_GetFcpTargetMapping", kStaleData, 0);
    EXPECT_EQ(findFcAdapter(1, 0, 100), nothing(kStaleData));
    EXPECT_EQ(attempts(), joined(kAdapter, joined(kPort, repeated(kMapping, kAttempts))));
    EXPECT_EQ(entriesRead(), 0u);
}

/// A stale answer may change the count; the next attempt has room for one entry all the same.
TEST_F(FcRetryTest, CountIsSetBeforeEachAttempt) {
    library->prescribe(
        {.function = "HBA_GetFcpTargetMapping", .result = kStaleData, .count = 2, .reported = 77});
    EXPECT_EQ(findFcAdapter(1, 0, 100), kFound);
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 1"), 3u);
}

/// Every port and every mapping has attempts of its own.
TEST_F(FcRetryTest, AttemptsAreCountedAnew) {
    library->setAdapters(
        {{"fc-a", {port("\\\\.\\Scsi1:", 1), port("\\\\.\\Scsi1:", 2)}, {{0, 1}}}});
    answer("HBA_GetAdapterPortAttributes", kStaleData, 20);
    answer("HBA_GetAdapterPortAttributes", kStaleData, 20, 22);
    answer("HBA_GetFcpTargetMapping", kStaleData, 20);
    answer("HBA_GetFcpTargetMapping", kStaleData, 20, 22);
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, wwnText(2), "fc-a"}));
    EXPECT_EQ(countCalls("HBA_GetAdapterPortAttributes 1 0"), 21u);
    EXPECT_EQ(countCalls("HBA_GetAdapterPortAttributes 1 1"), 21u);
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 1"), 42u);
}

// ---- Mappings of more than one entry

TEST_F(FcRetryTest, LargerMappingIsFetchedAtOnce) {
    setTargets(3);
    EXPECT_EQ(findFcAdapter(1, 0, 100), kFound);
    EXPECT_EQ(attempts(),
              joined(kAdapter, joined(kPort, joined(kMapping, {"HBA_GetFcpTargetMapping 1 3"}))));
    EXPECT_EQ(countDebugTexts(L"Got FcpTargetMapping. NumEntries = 3"), 1u);
    EXPECT_EQ(entriesRead(), 3u);
}

TEST_F(FcRetryTest, ThousandsOfTargets) {
    setTargets(5000);
    EXPECT_EQ(findFcAdapter(1, 0, 100), kFound);
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 5000"), 1u);
    EXPECT_EQ(entriesRead(), 5000u);
}

/// Targets may appear between the two calls: there is room for 50 more than were reported.
TEST_F(FcRetryTest, TargetsThatAppearMeanwhile) {
    setTargets(53);
    library->prescribe({.function = "HBA_GetFcpTargetMapping", .result = kMoreData, .reported = 3});
    library->prescribe(
        {.function = "HBA_GetFcpTargetMapping", .occurrence = 2, .reported = 53, .delivered = 53});
    EXPECT_EQ(findFcAdapter(1, 0, 100), kFound);
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 3"), 1u);
    EXPECT_EQ(entriesRead(), 53u);
}

/// Whatever the API reports, no more entries are read than there is room for.
TEST_F(FcRetryTest, EntriesBeyondTheRoomAreNotRead) {
    setTargets(54);
    library->prescribe({.function = "HBA_GetFcpTargetMapping", .result = kMoreData, .reported = 3});
    library->prescribe({.function = "HBA_GetFcpTargetMapping",
                        .occurrence = 2,
                        .reported = 0xFFFFFFFF,
                        .delivered = 53});
    EXPECT_EQ(findFcAdapter(1, 0, 100), nothing(kOk));
    EXPECT_EQ(countDebugTexts(L"Got FcpTargetMapping. NumEntries = -1"), 1u);
    EXPECT_EQ(entriesRead(), 53u);
}

TEST_F(FcRetryTest, OneEntryWhateverIsReported) {
    library->prescribe({.function = "HBA_GetFcpTargetMapping", .reported = 1000});
    EXPECT_EQ(findFcAdapter(1, 0, 5), nothing(kOk));
    EXPECT_EQ(countDebugTexts(L"Got FcpTargetMapping. NumEntries = 1000"), 1u);
    EXPECT_EQ(entriesRead(), 1u);
}

TEST_F(FcRetryTest, EmptyMapping) {
    library->setAdapters({{"fc-a", {port("\\\\.\\Scsi1:")}, {}}});
    EXPECT_EQ(findFcAdapter(1, 0, 0), nothing(kOk));
    EXPECT_EQ(countDebugTexts(L"Got FcpTargetMapping. NumEntries = 0"), 1u);
    EXPECT_EQ(entriesRead(), 0u);
}

TEST_F(FcRetryTest, MoreDataOfNoEntries) {
    library->prescribe({.function = "HBA_GetFcpTargetMapping", .result = kMoreData, .reported = 0});
    EXPECT_EQ(findFcAdapter(1, 0, 100), nothing(kMoreData));
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 0"), 1u);
}

/// A stale answer goes on with the larger mapping, within the same number of attempts.
TEST_F(FcRetryTest, StaleLargerMapping) {
    setTargets(3);
    answer("HBA_GetFcpTargetMapping", kStaleData, 2, 2);
    EXPECT_EQ(findFcAdapter(1, 0, 100), kFound);
    const std::vector<std::string> larger = {"HBA_RefreshInformation 1",
                                             "HBA_GetFcpTargetMapping 1 3"};
    EXPECT_EQ(
        attempts(),
        joined(kAdapter, joined(kPort, joined(kMapping, joined({"HBA_GetFcpTargetMapping 1 3"},
                                                               repeated(larger, 2))))));
}

TEST_F(FcRetryTest, LargerMappingThatStaysStale) {
    setTargets(3);
    answer("HBA_GetFcpTargetMapping", kStaleData, 0, 2);
    EXPECT_EQ(findFcAdapter(1, 0, 100), nothing(kStaleData));
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 1"), 1u);
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 3"), kAttempts);
}

TEST_F(FcRetryTest, StaleThenMoreData) {
    setTargets(3);
    answer("HBA_GetFcpTargetMapping", kStaleData, 1);
    EXPECT_EQ(findFcAdapter(1, 0, 100), kFound);
    EXPECT_EQ(attempts(), joined(kAdapter, joined(kPort, joined(repeated(kMapping, 2),
                                                                {"HBA_GetFcpTargetMapping 1 3"}))));
}

TEST_F(FcRetryTest, MoreDataAgain) {
    setTargets(3);
    answer("HBA_GetFcpTargetMapping", kMoreData, 1, 2);
    EXPECT_EQ(findFcAdapter(1, 0, 100), nothing(kMoreData));
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 3"), 1u);
    EXPECT_EQ(entriesRead(), 0u);
    EXPECT_FALSE(log.exists());
}

TEST_F(FcRetryTest, LargerMappingFails) {
    setTargets(3);
    answer("HBA_GetFcpTargetMapping", kBusy, 1, 2);
    EXPECT_EQ(findFcAdapter(1, 0, 100), nothing(kBusy));
    EXPECT_EQ(countCalls("HBA_GetFcpTargetMapping 1 3"), 1u);
}

}  // namespace
}  // namespace quista::test

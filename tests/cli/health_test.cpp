#include "cli/health.h"

#include <gtest/gtest.h>
#include <initializer_list>

namespace quista::cli {
namespace {

Lun lunWith(const std::string& serial, std::initializer_list<int> pathStates) {
    Lun lun;
    lun.serialNumber = serial;
    lun.serialText = serial;
    for (const int state : pathStates) {
        Path path;
        path.state = static_cast<std::uint8_t>(state);
        lun.paths.push_back(path);
    }
    lun.pathsReported = static_cast<std::uint32_t>(lun.paths.size());
    return lun;
}

Lun withoutSerial(Lun lun) {
    lun.serialNumber.reset();
    lun.serialText = "Invalid Entry";
    return lun;
}

TEST(HealthTest, PathsDecide) {
    EXPECT_EQ(healthOf(lunWith("A", {1, 2})), Health::kOk);
    EXPECT_EQ(healthOf(lunWith("A", {1, 2, 3})), Health::kDegraded);
    EXPECT_EQ(healthOf(lunWith("A", {3, 2, 4})), Health::kLastPath);
    EXPECT_EQ(healthOf(lunWith("A", {1})), Health::kLastPath) << "there is no other";
    EXPECT_EQ(healthOf(lunWith("A", {3, 4})), Health::kDown);
    EXPECT_EQ(healthOf(lunWith("A", {})), Health::kDown);
}

TEST(HealthTest, MissingPathsMakeALunUnreadable) {
    Lun lun = lunWith("A", {1, 1});
    lun.pathsReported = 3;
    EXPECT_EQ(healthOf(lun), Health::kUnreadable);
}

TEST(HealthTest, FailedRecordIsUnreadable) {
    Lun lun = lunWith("A", {1, 1});
    lun.status = DSM_WMI_FAILURE;
    EXPECT_EQ(healthOf(lun), Health::kUnreadable);
}

TEST(HealthTest, LossOfPathsIsMoreUrgentThanAnUnreadableSerial) {
    EXPECT_EQ(healthOf(withoutSerial(lunWith("A", {1, 1}))), Health::kUnreadable);
    EXPECT_EQ(healthOf(withoutSerial(lunWith("A", {1, 3}))), Health::kLastPath);
    EXPECT_EQ(healthOf(withoutSerial(lunWith("A", {3, 3}))), Health::kDown);
}

TEST(HealthTest, EveryStateHasANameAndATone) {
    EXPECT_EQ(healthName(Health::kOk), "ok");
    EXPECT_EQ(healthName(Health::kDegraded), "degraded");
    EXPECT_EQ(healthName(Health::kLastPath), "last path");
    EXPECT_EQ(healthName(Health::kDown), "down");
    EXPECT_EQ(healthName(Health::kUnreadable), "unreadable");
    EXPECT_EQ(healthTone(Health::kOk), Tone::kGood);
    EXPECT_EQ(healthTone(Health::kDegraded), Tone::kWarning);
    EXPECT_EQ(healthTone(Health::kLastPath), Tone::kBad);
}

TEST(HealthTest, SummaryCountsEveryState) {
    const std::vector<Lun> luns = {lunWith("A", {1, 1}), lunWith("B", {1, 1, 3}),
                                   lunWith("C", {1, 3}), lunWith("D", {3}),
                                   withoutSerial(lunWith("", {1, 1}))};
    const HealthSummary summary = summarize(luns);
    EXPECT_EQ(summary.luns, 5u);
    EXPECT_EQ(summary.ok, 1u);
    EXPECT_EQ(summary.degraded, 1u);
    EXPECT_EQ(summary.lastPath, 1u);
    EXPECT_EQ(summary.down, 1u);
    EXPECT_EQ(summary.unreadable, 1u);
    EXPECT_EQ(summary.paths, 10u);
    EXPECT_EQ(summary.pathsAvailable, 7u);
}

TEST(HealthTest, SummaryLineSaysThatAllIsWell) {
    const std::vector<Lun> luns = {lunWith("A", {1, 1})};
    EXPECT_EQ(summaryLine(luns), "1 LUN, 2 of 2 paths available: all ok");
}

TEST(HealthTest, SummaryLineNamesTheMostUrgentFirst) {
    const std::vector<Lun> luns = {lunWith("A", {1, 1}), lunWith("B", {1, 1, 3}),
                                   lunWith("C", {1, 3}), lunWith("D", {3}), lunWith("E", {1, 3})};
    EXPECT_EQ(
        summaryLine(luns),
        "5 LUNs, 6 of 10 paths available: 1 down (D); 2 on the last path (C, E); 1 degraded (B)");
}

TEST(HealthTest, SummaryLineStaysShort) {
    std::vector<Lun> luns;
    for (const char* serial : {"A", "B", "C", "D", "E", "F"}) luns.push_back(lunWith(serial, {3}));
    EXPECT_EQ(summaryLine(luns), "6 LUNs, 0 of 6 paths available: 6 down (A, B, C, D, ...)");
}

}  // namespace
}  // namespace quista::cli

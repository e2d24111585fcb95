// The maps on the machine's own WMI: no simulated host stands in for root\cimv2, and the numbers
// are the machine's, so what is checked is their form.
#include <windows.h>

#include <objbase.h>

#include <gtest/gtest.h>
#include <set>

#include "quista/frame.h"
#include "tests/luns/windows_disks/windows_disks_test.h"
#include "tests/support/log_file.h"
#include "tests/support/work_folder.h"

namespace quista::test {
namespace {

class MachinesDisksTest : public testing::Test {
  protected:
    MachinesDisksTest() {
        EXPECT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0);
        // The status tells of MPIO, which the machine need not have.
        DSMInitialize(0);
        log.clear();
    }
    ~MachinesDisksTest() override {
        DSMUninitialize();
        map.clear();
        CoUninitialize();
    }

    WorkFolder folder;
    LogFile log;
    DiskMap map;
};

TEST_F(MachinesDisksTest, DrivesHaveIdentifiersNumbersAndSizes) {
    ASSERT_EQ(map.readDrives(), DSM_SUCCESS);
    EXPECT_EQ(log.lines(), endOf(kDriveClass));
    ASSERT_GT(map.count, 0) << "the machine has a drive";
    EXPECT_LE(map.disks().size(), static_cast<std::size_t>(map.count));
    std::set<long> numbers;
    for (const auto& [identifier, disk] : map.disks()) {
        if (identifier.empty()) continue;
        EXPECT_GE(disk.number, 0);
        EXPECT_GE(disk.size, 0);
        EXPECT_TRUE(numbers.insert(disk.number).second) << disk.number << " appears twice";
    }
    EXPECT_FALSE(numbers.empty());
}

TEST_F(MachinesDisksTest, MediaHaveNumbers) {
    ASSERT_EQ(map.readMedia(), DSM_SUCCESS);
    EXPECT_EQ(log.lines(), endOf(kMediaClass));
    EXPECT_LE(map.disks().size(), static_cast<std::size_t>(map.count));
    for (const auto& [serial, disk] : map.disks()) {
        EXPECT_GE(disk.number, -1);
        EXPECT_EQ(disk.size, 0);
    }
}

TEST_F(MachinesDisksTest, SecondReadingGivesTheSame) {
    ASSERT_EQ(map.readDrives(), DSM_SUCCESS);
    DiskMap again;
    ASSERT_EQ(again.readDrives(), DSM_SUCCESS);
    EXPECT_EQ(again.count, map.count);
    EXPECT_EQ(again.disks(), map.disks());
}

}  // namespace
}  // namespace quista::test

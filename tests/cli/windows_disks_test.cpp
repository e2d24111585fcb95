#include "cli/windows_disks.h"

#include <gtest/gtest.h>

namespace quista::cli {
namespace {

Lun lunWith(std::optional<std::string> serial, std::optional<std::string> instanceName = {}) {
    Lun lun;
    lun.serialNumber = std::move(serial);
    lun.instanceName = std::move(instanceName);
    return lun;
}

DiskOfLun diskOf(const Lun& lun, const WindowsDisks& disks) {
    return joinDisks({lun}, disks).front();
}

const WindowsDisks kDisks{{{"boot", 0}, {"  A1  ", 3}, {"A2", -1}},
                          {{"SCSI\\DISK\\0", 0, 10},
                           {"MPIO\\DISK&VEN_K\\1&2&41", 3, 1000},
                           {"MPIO\\DISK&VEN_K\\1&2&42", 4, 2000}}};

TEST(WindowsDisksTest, SerialNumberGivesTheNumberAndTheNumberTheSize) {
    const DiskOfLun disk = diskOf(lunWith("A1"), kDisks);
    EXPECT_EQ(disk.number, 3u);
    EXPECT_EQ(disk.device, "\\\\.\\PHYSICALDRIVE3");
    EXPECT_EQ(disk.size, 1000u);
    EXPECT_EQ(disk.deviceId, "MPIO\\DISK&VEN_K\\1&2&41");
}

TEST(WindowsDisksTest, LettersOfASerialNumberCount) {
    EXPECT_EQ(diskOf(lunWith("a1"), kDisks).number, std::nullopt);
}

TEST(WindowsDisksTest, InstanceNameStandsInForTheSerialNumber) {
    const DiskOfLun disk = diskOf(lunWith({}, "MPIO\\Disk&Ven_K\\1&2&42_0"), kDisks);
    EXPECT_EQ(disk.number, 4u);
    EXPECT_EQ(disk.size, 2000u);
}

TEST(WindowsDisksTest, MediumWithoutANumberIsNoMatch) {
    EXPECT_EQ(diskOf(lunWith("A2"), kDisks).number, std::nullopt);
    EXPECT_EQ(diskOf(lunWith("A2", "MPIO\\Disk&Ven_K\\1&2&42_0"), kDisks).number, 4u);
}

TEST(WindowsDisksTest, WhatMatchesNothingHasNothing) {
    const DiskOfLun disk = diskOf(lunWith({}), kDisks);
    EXPECT_EQ(disk.number, std::nullopt);
    EXPECT_EQ(disk.device, std::nullopt);
    EXPECT_EQ(disk.size, std::nullopt);
    EXPECT_EQ(disk.deviceId, std::nullopt);
}

TEST(WindowsDisksTest, MediumWithoutADriveHasNoSize) {
    const DiskOfLun disk = diskOf(lunWith("A1"), {{{"A1", 7}}, {}});
    EXPECT_EQ(disk.number, 7u);
    EXPECT_EQ(disk.size, std::nullopt);
}

}  // namespace
}  // namespace quista::cli

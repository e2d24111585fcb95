#include "cli/topology.h"

#include <gtest/gtest.h>

namespace quista::cli {
namespace {

Path path(std::uint32_t id, std::uint8_t scsiPort, std::optional<HostAdapter> adapter,
          std::string target, std::uint8_t state = 1) {
    Path made;
    made.id = id;
    made.address.port = scsiPort;
    made.protocol = 1;
    made.state = state;
    made.fc = FcTarget{};
    made.targetAdapter = std::move(target);
    made.adapter = std::move(adapter);
    return made;
}

Lun lun(std::vector<Path> paths) {
    Lun made;
    made.storageSystem = "alpha";
    made.paths = std::move(paths);
    return made;
}

const HostAdapter kFirst{"hba", "10:00"};
const HostAdapter kSecond{"hba", "10:01"};

TEST(TopologyTest, PathsMeetAtTheirPorts) {
    const std::vector<Lun> luns = {
        lun({path(1, 2, kFirst, "a"), path(2, 3, kSecond, "b")}),
        lun({path(3, 2, kFirst, "a"), path(4, 2, kFirst, "b")}),
    };
    const std::vector<AdapterPort> ports = adapterPortsOf(luns);
    ASSERT_EQ(ports.size(), 2u);
    EXPECT_EQ(ports[0].adapter->address, "10:00");
    EXPECT_EQ(ports[0].protocol, "FC");
    ASSERT_EQ(ports[0].targets.size(), 2u);
    EXPECT_EQ(ports[0].targets[0].name, "a");
    ASSERT_EQ(ports[0].targets[0].paths.size(), 2u);
    EXPECT_EQ(ports[0].targets[0].paths[1].path->id, 3u);
    EXPECT_EQ(ports[0].targets[1].paths[0].path->id, 4u);
    ASSERT_EQ(ports[1].targets.size(), 1u);
    EXPECT_EQ(ports[1].targets[0].paths[0].lun, &luns[0]);
}

TEST(TopologyTest, PortsCountPathsAndLuns) {
    const std::vector<Lun> luns = {
        lun({path(1, 2, kFirst, "a"), path(2, 2, kFirst, "b", 3)}),
        lun({path(3, 2, kFirst, "a", 2)}),
    };
    const std::vector<AdapterPort> ports = adapterPortsOf(luns);
    ASSERT_EQ(ports.size(), 1u);
    EXPECT_EQ(ports[0].pathsTotal(), 3u);
    EXPECT_EQ(ports[0].pathsAvailable(), 2u);
    EXPECT_EQ(ports[0].luns(), 2u);
}

TEST(TopologyTest, UnknownAdaptersAreToldApartByTheirScsiPort) {
    const std::vector<Lun> luns = {
        lun({path(1, 2, std::nullopt, "a"), path(2, 3, std::nullopt, "a"),
             path(3, 2, std::nullopt, "a"), path(4, 2, kFirst, "a")})};
    const std::vector<AdapterPort> ports = adapterPortsOf(luns);
    ASSERT_EQ(ports.size(), 3u);
    EXPECT_FALSE(ports[0].adapter);
    EXPECT_EQ(ports[0].pathsTotal(), 2u);
    EXPECT_EQ(ports[1].scsiPort, 3);
    EXPECT_TRUE(ports[2].adapter);
}

TEST(TopologyTest, SamePortNameOnTwoStorageSystemsIsTwoPorts) {
    std::vector<Lun> luns = {lun({path(1, 2, kFirst, "a")}), lun({path(2, 2, kFirst, "a")})};
    luns[1].storageSystem = "beta";
    const std::vector<AdapterPort> ports = adapterPortsOf(luns);
    ASSERT_EQ(ports.size(), 1u);
    EXPECT_EQ(ports[0].targets.size(), 2u);
}

TEST(TopologyTest, NoLunsNoPorts) {
    EXPECT_TRUE(adapterPortsOf({}).empty());
}

}  // namespace
}  // namespace quista::cli

// Generated hosts: as consistent as the sample hosts, at any size.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "simulator/generator/host_generator.h"
#include "tests/simulator/hosts/host_consistency.h"
#include "tests/simulator/hosts/host_records.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {

using simulator::generateHost;
using simulator::Repository;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void expectSize(const Repository& host, std::size_t luns, std::size_t pathsPerLun) {
    const auto found = vendorLuns(host);
    ASSERT_EQ(found.size(), luns);
    for (const VendorLun& lun : found) {
        EXPECT_EQ(lun.paths.size(), pathsPerLun);
        EXPECT_EQ(lun.availablePaths(), pathsPerLun);
    }
}

struct Size {
    unsigned luns;
    unsigned pathsPerLun;
};

}  // namespace

class HostGenerator : public testing::TestWithParam<Size> {};

TEST_P(HostGenerator, Host_HasTheSizeAndTellsOneStory) {
    const Repository host = loadHostText(generateHost(GetParam().luns, GetParam().pathsPerLun));
    expectSize(host, GetParam().luns, GetParam().pathsPerLun);
    expectConsistent(host);
    EXPECT_THAT(nullProperties(host), IsEmpty());
}

// The last two have more LUNs than one target port serves.
INSTANTIATE_TEST_SUITE_P(Sizes, HostGenerator,
                         testing::Values(Size{0, 4}, Size{1, 1}, Size{3, 4}, Size{2, 0},
                                         Size{200, 8}, Size{300, 2}, Size{600, 3}),
                         [](const auto& instance) {
                             return std::to_string(instance.param.luns) + "x" +
                                    std::to_string(instance.param.pathsPerLun);
                         });

TEST(HostGeneratorText, Luns_TakeTurnsWithPoliciesAndTransports) {
    const auto luns = vendorLuns(loadHostText(generateHost(12, 4)));
    std::set<std::uint64_t> policies;
    for (const VendorLun& lun : luns) {
        policies.insert(lun.policy);
        ASSERT_EQ(lun.paths.size(), 4u);
        EXPECT_TRUE(lun.paths[0].isFibreChannel() && lun.paths[1].isFibreChannel());
        EXPECT_TRUE(lun.paths[2].isIscsi() && !lun.paths[2].hasIpv6());
        EXPECT_TRUE(lun.paths[3].hasIpv6());
        EXPECT_TRUE(lun.paths[3].isProxy);
    }
    EXPECT_THAT(policies, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(HostGeneratorText, SameSize_GivesTheSameText) {
    EXPECT_EQ(generateHost(5, 3), generateHost(5, 3));
}

}  // namespace quista::test

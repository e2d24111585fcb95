// The sample hosts: each tells one story in all its classes, and shows what it is there to show.
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "simulator/mof/mof_writer.h"
#include "tests/simulator/hosts/host_consistency.h"
#include "tests/simulator/hosts/host_records.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {

using simulator::Repository;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::UnorderedElementsAre;

namespace {

template <class Predicate>
bool anyPath(const std::vector<VendorLun>& luns, Predicate predicate) {
    return std::any_of(luns.begin(), luns.end(), [&](const VendorLun& lun) {
        return std::any_of(lun.paths.begin(), lun.paths.end(), predicate);
    });
}

std::vector<std::uint64_t> statesOf(const VendorLun& lun) {
    std::vector<std::uint64_t> states;
    for (const VendorPath& path : lun.paths) {
        states.push_back(path.state);
    }
    return states;
}

}  // namespace

class EverySampleHost : public testing::TestWithParam<const wchar_t*> {};

TEST_P(EverySampleHost, Classes_TellOneStory) {
    expectConsistent(loadHostFiles({GetParam()}));
}

TEST_P(EverySampleHost, Dump_ReadBack_GivesTheSameHost) {
    const Repository host = loadHostFiles({GetParam()});
    EXPECT_EQ(loadHostText(simulator::writeMof(host)), host);
}

INSTANTIATE_TEST_SUITE_P(WithMpio, EverySampleHost,
                         testing::Values(L"standard.mof", L"degraded.mof", L"empty.mof"),
                         [](const auto& instance) {
                             const std::string file = shown(instance.param);
                             return file.substr(0, file.find('.'));
                         });

TEST(StandardHost, Luns_UseEveryPolicyOverTwoToFourPaths) {
    const auto luns = vendorLuns(loadHostFiles({L"standard.mof"}));
    EXPECT_GE(luns.size(), 6u);
    std::set<std::uint64_t> policies;
    for (const VendorLun& lun : luns) {
        policies.insert(lun.policy);
        EXPECT_THAT(lun.paths.size(), AllOf(Ge(2u), Le(4u)));
        EXPECT_EQ(lun.state, 0u);
        EXPECT_EQ(lun.availablePaths(), lun.paths.size());
    }
    EXPECT_THAT(policies, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(StandardHost, Paths_CoverBothTransportsAndBothAddressFamilies) {
    const auto luns = vendorLuns(loadHostFiles({L"standard.mof"}));
    EXPECT_TRUE(anyPath(luns, [](const VendorPath& path) { return path.isFibreChannel(); }));
    EXPECT_TRUE(anyPath(luns, [](const VendorPath& path) { return path.ipv4Address != 0; }));
    EXPECT_TRUE(anyPath(luns, [](const VendorPath& path) { return path.hasIpv6(); }));
    EXPECT_TRUE(anyPath(luns, [](const VendorPath& path) { return path.isProxy; }));
    EXPECT_TRUE(anyPath(luns, [](const VendorPath& path) { return path.state == 2; }));
    EXPECT_TRUE(anyPath(luns, [](const VendorPath& path) { return path.dsmId < 0; }));
}

TEST(StandardHost, Disks_BelongToThreeDsms) {
    std::vector<std::wstring> others;
    for (const MpioDisk& disk : mpioDisks(loadHostFiles({L"standard.mof"}))) {
        if (disk.dsmName != L"Data KORVA DSM") others.push_back(disk.dsmName);
    }
    EXPECT_THAT(others, UnorderedElementsAre(L"Microsoft DSM", L"Microsoft iSCSI DSM"));
}

TEST(StandardHost, SoftwareInitiator_HasPortalsOfBothAddressFamilies) {
    const Repository host = loadHostFiles({L"standard.mof"});
    const auto adapters = host.instances(kWmi, L"MSiSCSI_HBAInformation");
    const auto portals = host.instances(kWmi, L"MSiSCSI_PortalInfoClass");
    ASSERT_EQ(adapters.size(), 1u);
    ASSERT_EQ(portals.size(), 1u);
    EXPECT_EQ(textOf(*adapters.front(), L"InstanceName"), L"ROOT\\ISCSIPRT\\0000_0");
    EXPECT_EQ(textOf(*portals.front(), L"InstanceName"), L"ROOT\\ISCSIPRT\\0000_0");
    EXPECT_EQ(textOf(*adapters.front(), L"DriverName"), L"msiscsi.sys");
    std::set<std::uint64_t> families;
    for (const auto& portal : objectsOf(*portals.front(), L"PortalInformation")) {
        families.insert(numberOf(*objectOf(*portal, L"IPAddr"), L"Type"));
    }
    EXPECT_THAT(families, ElementsAre(1, 2));
}

TEST(StandardHost, EveryProperty_HasAValue) {
    EXPECT_THAT(nullProperties(loadHostFiles({L"standard.mof"})), IsEmpty());
}

TEST(DegradedHost, Luns_ShowOneKindOfTroubleEach) {
    const auto luns = vendorLuns(loadHostFiles({L"degraded.mof"}));
    ASSERT_EQ(luns.size(), 6u);
    EXPECT_EQ(luns[0].availablePaths(), luns[0].paths.size());
    EXPECT_EQ(luns[1].availablePaths(), luns[1].paths.size());
    EXPECT_THAT(statesOf(luns[2]), ElementsAre(1, 3, 3, 3)) << "one path left";
    EXPECT_THAT(statesOf(luns[3]), ElementsAre(1, 2, 3, 4)) << "one path failed, one disabled";
    EXPECT_THAT(statesOf(luns[4]), ElementsAre(3, 3)) << "all paths down";
    EXPECT_NE(luns[4].state, 0u);
    EXPECT_FALSE(luns[5].serialNumber.has_value());
    EXPECT_EQ(luns[5].availablePaths(), luns[5].paths.size());
}

TEST(DegradedHost, FailedPath_LeadsToAnUnavailablePortGroup) {
    for (const VendorLun& lun : vendorLuns(loadHostFiles({L"degraded.mof"}))) {
        for (const VendorPath& path : lun.paths) {
            EXPECT_EQ(path.state == 3, path.groupState == 3);
        }
    }
}

TEST(DegradedHost, OnlySerialNumbers_AreWithoutAValue) {
    EXPECT_THAT(nullProperties(loadHostFiles({L"degraded.mof"})),
                ElementsAre(L"KORVADSM_LUNINFO.SerialNumber", L"MPIO_DRIVE_INFO.SerialNumber",
                            L"Win32_PhysicalMedia.SerialNumber"));
}

TEST(EmptyHost, Software_IsThereWithoutDisks) {
    const Repository host = loadHostFiles({L"empty.mof"});
    EXPECT_THAT(vendorLuns(host), IsEmpty());
    EXPECT_THAT(mpioDisks(host), IsEmpty());
    EXPECT_EQ(windowsDisks(host).size(), 1u);
    const auto lists = host.instances(kWmi, L"MPIO_DISK_INFO");
    ASSERT_EQ(lists.size(), 1u);
    EXPECT_EQ(numberOf(*lists.front(), L"NumberDrives"), 0u);
    EXPECT_NE(host.findClass(kWmi, L"KORVADSM_LUNINFO"), nullptr);
    EXPECT_EQ(host.instances(kWmi, L"KORVADSM").size(), 1u);
}

TEST(BareHost, Namespaces_HoldNothingButASystemDisk) {
    const Repository host = loadHostFiles({L"bare.mof"});
    EXPECT_TRUE(host.hasNamespace(kWmi));
    EXPECT_THAT(host.classes(kWmi), IsEmpty());
    const auto disks = windowsDisks(host);
    ASSERT_EQ(disks.size(), 1u);
    EXPECT_FALSE(disks.front().pnpDeviceId.starts_with(L"MPIO"));
    EXPECT_THAT(nullProperties(host), IsEmpty());
}

}  // namespace quista::test

// SetActive, SetPassive, SetEnabled, SetDisabled, SetWeight and UpdateRTPG.
#include <gmock/gmock.h>

#include "tests/simulator/driver/driver_fixture.h"
#include "tests/simulator/hosts/host_consistency.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

/// LUNs of the host "standard", by policy.
constexpr std::size_t kSubsetLun = 0;        // 0x101 and 0x102 active, 0x103 and 0x104 passive
constexpr std::size_t kQueueDepthLun = 1;    // four active paths, the third 0x80000203
constexpr std::size_t kFailOverLun = 2;      // 0x301 active, 0x302 passive
constexpr std::size_t kWeightedLun = 3;      // weights 0, 10 and 100
constexpr std::size_t kWideFailOverLun = 6;  // 0x701 active; the first passive one is a proxy

class PathMethodsTest : public DriverTest {
  protected:
    ~PathMethodsTest() override { expectConsistent(repository()); }
};

TEST_F(PathMethodsTest, SetActive_MakesThePathActive) {
    EXPECT_EQ(run(kSubsetLun, L"SetActive", 0x103), kSuccess);
    EXPECT_THAT(states(kSubsetLun), ElementsAre(1, 1, 1, 2));
    EXPECT_THAT(primaries(kSubsetLun), ElementsAre(true, true, false, false));
    EXPECT_EQ(disk(kSubsetLun).paths[2].state, 1u);
}

TEST_F(PathMethodsTest, SetActive_UnderFailOver_TakesOver) {
    EXPECT_EQ(run(kFailOverLun, L"SetActive", 0x302), kSuccess);
    EXPECT_THAT(states(kFailOverLun), ElementsAre(2, 1));
    EXPECT_THAT(primaries(kFailOverLun), ElementsAre(false, true));
    EXPECT_TRUE(disk(kFailOverLun).policyPaths[1].isPrimary);
    EXPECT_FALSE(disk(kFailOverLun).policyPaths[0].isPrimary);
}

TEST_F(PathMethodsTest, SetActive_ActivePath_ChangesNothing) {
    const std::wstring before = host().dump();
    EXPECT_EQ(run(kFailOverLun, L"SetActive", 0x301), kSuccess);
    EXPECT_EQ(host().dump(), before);
}

TEST_F(PathMethodsTest, SetPassive_MakesThePathPassive) {
    EXPECT_EQ(run(kSubsetLun, L"SetPassive", 0x101), kSuccess);
    EXPECT_THAT(states(kSubsetLun), ElementsAre(2, 1, 2, 2));
    EXPECT_EQ(disk(kSubsetLun).paths[0].state, 2u);
}

TEST_F(PathMethodsTest, SetPassive_UnderFailOver_HandsOver) {
    EXPECT_EQ(run(kFailOverLun, L"SetPassive", 0x301), kSuccess);
    EXPECT_THAT(states(kFailOverLun), ElementsAre(2, 1));
    EXPECT_THAT(primaries(kFailOverLun), ElementsAre(false, true));
}

TEST_F(PathMethodsTest, SetPassive_LastAvailablePathUnderFailOver_LeavesNoneActive) {
    EXPECT_EQ(run(kFailOverLun, L"SetDisabled", 0x302), kSuccess);
    EXPECT_EQ(run(kFailOverLun, L"SetPassive", 0x301), kSuccess);
    EXPECT_THAT(states(kFailOverLun), ElementsAre(2, 4));
}

TEST_F(PathMethodsTest, SetDisabled_TakesThePathOutOfUse) {
    EXPECT_EQ(run(kSubsetLun, L"SetDisabled", 0x101), kSuccess);
    EXPECT_THAT(states(kSubsetLun), ElementsAre(4, 1, 2, 2));
    EXPECT_FALSE(lun(kSubsetLun).paths[0].isAvailable());
    EXPECT_EQ(disk(kSubsetLun).paths[0].state, 4u);
    EXPECT_EQ(run(kSubsetLun, L"SetDisabled", 0x101), kSuccess);
}

TEST_F(PathMethodsTest, SetDisabled_NegativeDsmId_IsFound) {
    EXPECT_EQ(run(kQueueDepthLun, L"SetDisabled", 0x80000203), kSuccess);
    EXPECT_THAT(states(kQueueDepthLun), ElementsAre(1, 1, 4, 1));
}

TEST_F(PathMethodsTest, SetDisabled_LastActivePath_OthersStandIn) {
    EXPECT_EQ(run(kSubsetLun, L"SetDisabled", 0x101), kSuccess);
    EXPECT_EQ(run(kSubsetLun, L"SetDisabled", 0x102), kSuccess);
    EXPECT_THAT(states(kSubsetLun), ElementsAre(4, 4, 1, 1));
}

TEST_F(PathMethodsTest, SetDisabled_UnderFailOver_MovesToTheOwnersPaths) {
    EXPECT_EQ(run(kWideFailOverLun, L"SetDisabled", 0x701), kSuccess);
    EXPECT_THAT(states(kWideFailOverLun), ElementsAre(4, 2, 1, 2));
    EXPECT_THAT(primaries(kWideFailOverLun), ElementsAre(false, false, true, false));
}

TEST_F(PathMethodsTest, SetDisabled_LightestPath_TheNextCarriesOn) {
    EXPECT_EQ(run(kWeightedLun, L"SetDisabled", 0x401), kSuccess);
    EXPECT_THAT(states(kWeightedLun), ElementsAre(4, 1, 2));
}

TEST_F(PathMethodsTest, SetDisabled_LastAvailablePath_LunBecomesUnreachable) {
    EXPECT_EQ(run(kFailOverLun, L"SetDisabled", 0x301), kSuccess);
    EXPECT_EQ(lun(kFailOverLun).state, 0u);
    EXPECT_EQ(run(kFailOverLun, L"SetDisabled", 0x302), kSuccess);
    EXPECT_THAT(states(kFailOverLun), ElementsAre(4, 4));
    EXPECT_EQ(lun(kFailOverLun).state, 2u);
    EXPECT_EQ(run(kFailOverLun, L"SetEnabled", 0x302), kSuccess);
    EXPECT_EQ(lun(kFailOverLun).state, 0u);
    EXPECT_THAT(states(kFailOverLun), ElementsAre(4, 1));
}

TEST_F(PathMethodsTest, SetEnabled_UnderEveryPolicy_TakesItsPlace) {
    const auto disableAndEnable = [&](std::size_t lunIndex, std::uint32_t dsmId) {
        EXPECT_EQ(run(lunIndex, L"SetDisabled", dsmId), kSuccess);
        EXPECT_EQ(run(lunIndex, L"SetEnabled", dsmId), kSuccess);
        return states(lunIndex);
    };
    EXPECT_THAT(disableAndEnable(kSubsetLun, 0x101), ElementsAre(1, 1, 2, 2));
    EXPECT_THAT(disableAndEnable(kSubsetLun, 0x104), ElementsAre(1, 1, 2, 2));
    EXPECT_THAT(disableAndEnable(kQueueDepthLun, 0x202), ElementsAre(1, 1, 1, 1));
    EXPECT_THAT(disableAndEnable(kFailOverLun, 0x301), ElementsAre(2, 1));
    EXPECT_THAT(disableAndEnable(kWeightedLun, 0x401), ElementsAre(1, 2, 2));
}

TEST_F(PathMethodsTest, SetEnabled_EnabledPath_ChangesNothing) {
    const std::wstring before = host().dump();
    EXPECT_EQ(run(kSubsetLun, L"SetEnabled", 0x103), kSuccess);
    EXPECT_EQ(host().dump(), before);
}

TEST_F(PathMethodsTest, SetWeight_IsKeptInBothClasses_TheLightestPathCarries) {
    EXPECT_EQ(setWeight(kWeightedLun, 0x401, 50), kSuccess);
    EXPECT_THAT(weights(kWeightedLun), ElementsAre(50, 10, 100));
    EXPECT_EQ(disk(kWeightedLun).policyPaths[0].weight, 50u);
    EXPECT_THAT(states(kWeightedLun), ElementsAre(2, 1, 2));
    EXPECT_EQ(setWeight(kWeightedLun, 0x402, 0xFFFFFFFF), kSuccess);
    EXPECT_THAT(weights(kWeightedLun), ElementsAre(50, 0xFFFFFFFF, 100));
    EXPECT_THAT(states(kWeightedLun), ElementsAre(1, 2, 2));
}

TEST_F(PathMethodsTest, UpdateRtpg_SucceedsAndChangesNothing) {
    const std::wstring before = host().dump();
    EXPECT_EQ(run(kQueueDepthLun, L"UpdateRTPG", 0x80000203), kSuccess);
    EXPECT_EQ(host().dump(), before);
}

class PathRefusalsTest : public PathMethodsTest {
  protected:
    /// A refusal changes nothing.
    void expectRefused(std::size_t lunIndex, const wchar_t* method, std::uint32_t dsmId,
                       std::uint32_t code) {
        const std::wstring before = host().dump();
        EXPECT_EQ(run(lunIndex, method, dsmId), code) << shown(method);
        EXPECT_EQ(host().dump(), before) << shown(method);
    }
};

TEST_F(PathRefusalsTest, UnknownDsmId_NoSuchPath) {
    for (const wchar_t* method :
         {L"SetActive", L"SetPassive", L"SetEnabled", L"SetDisabled", L"UpdateRTPG"}) {
        expectRefused(kSubsetLun, method, 0x301, kNoSuchPath);
    }
    EXPECT_EQ(setWeight(kWeightedLun, 0x101, 1), kNoSuchPath);
}

TEST_F(PathRefusalsTest, WeightedPaths_NeitherActiveNorPassive) {
    expectRefused(kWeightedLun, L"SetActive", 0x402, kNotUnderThisPolicy);
    expectRefused(kWeightedLun, L"SetPassive", 0x401, kNotUnderThisPolicy);
}

TEST_F(PathRefusalsTest, SetWeight_OnlyUnderWeightedPaths) {
    const std::wstring before = host().dump();
    EXPECT_EQ(setWeight(kFailOverLun, 0x301, 5), kNotUnderThisPolicy);
    EXPECT_EQ(host().dump(), before);
}

TEST_F(PathRefusalsTest, DisabledPath_HasToBeEnabledFirst) {
    ASSERT_EQ(run(kSubsetLun, L"SetDisabled", 0x101), kSuccess);
    expectRefused(kSubsetLun, L"SetActive", 0x101, kPathDisabled);
    expectRefused(kSubsetLun, L"SetPassive", 0x101, kPathDisabled);
}

TEST_F(PathRefusalsTest, FailedPath_AllowsNothing) {
    loadHost(L"degraded");
    constexpr std::size_t kLun = 3;
    ASSERT_THAT(states(kLun), ElementsAre(1, 2, 3, 4));
    const auto failed = static_cast<std::uint32_t>(lun(kLun).paths[2].dsmId);
    for (const wchar_t* method : {L"SetActive", L"SetPassive", L"SetEnabled", L"SetDisabled"}) {
        expectRefused(kLun, method, failed, kPathFailed);
    }
}

TEST_F(PathRefusalsTest, NullParameters_Invalid) {
    const std::wstring path = pathOf(L"KORVADSM_LUNINFO", lun(kWeightedLun).instanceName);
    const Object in = inParameters(L"KORVADSM_LUNINFO", L"SetWeight");
    EXPECT_EQ(execute(path, L"SetWeight", in.get()), S_OK);
    EXPECT_EQ(answer(L"ReturnCode"), kInvalidParameter);
    put(*in, L"DsmID", 0x401);
    EXPECT_EQ(execute(path, L"SetWeight", in.get()), S_OK);
    EXPECT_EQ(answer(L"ReturnCode"), kInvalidParameter);
}

/// Hosts of which little is there: the driver changes what it finds.
class SparseHostTest : public DriverTest {
  protected:
    SparseHostTest() { host().clear(); }
};

TEST_F(SparseHostTest, LunWithoutMpiosInstances_IsChangedAlone) {
    load(
        LR"(class PATH { sint32 DsmId; uint8 PathState; };
             class KORVADSM_LUNINFO { [key] string InstanceName; PATH Paths[];
                 void SetDisabled([in] sint32 DsmID, [out] uint32 ReturnCode); };
             instance of KORVADSM_LUNINFO { InstanceName = "a";
                 Paths = { instance of PATH { DsmId = 1; PathState = 1; } }; };)");
    const Object in = inParameters(L"KORVADSM_LUNINFO", L"SetDisabled");
    put(*in, L"DsmID", 1);
    EXPECT_EQ(execute(pathOf(L"KORVADSM_LUNINFO", L"a"), L"SetDisabled", in.get()), S_OK);
    EXPECT_EQ(answer(L"ReturnCode"), kSuccess);
    EXPECT_NE(host().dump().find(L"PathState = 4;"), std::wstring::npos);
}

TEST_F(SparseHostTest, MethodWithoutInputs_IsAgreedTo) {
    load(
        LR"(class KORVADSM_LUNINFO { [key] string InstanceName;
                 void SetActive([out] uint32 ReturnCode); };
             instance of KORVADSM_LUNINFO { InstanceName = "a"; };)");
    EXPECT_EQ(execute(pathOf(L"KORVADSM_LUNINFO", L"a"), L"SetActive", nullptr), S_OK);
    EXPECT_EQ(answer(L"ReturnCode"), kSuccess);
}

}  // namespace
}  // namespace quista::test

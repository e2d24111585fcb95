// DsmSetLoadBalancePolicy.
#include <gmock/gmock.h>

#include "tests/simulator/driver/driver_fixture.h"
#include "tests/simulator/hosts/host_consistency.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

class PolicyMethodsTest : public DriverTest {
  protected:
    ~PolicyMethodsTest() override { expectConsistent(repository()); }

    /// MPIO's policy object of a disk, as a client reads it to change it.
    Object policyObject(std::size_t diskIndex) {
        const Object query =
            object(pathOf(L"DSM_QueryLBPolicy", disk(diskIndex).instanceName).c_str());
        OwnedVariant value = get(*query, L"LoadBalancePolicy");
        EXPECT_EQ(value->vt, VT_UNKNOWN);
        void* found = nullptr;
        EXPECT_EQ(value->punkVal->QueryInterface(IID_IWbemClassObject, &found), S_OK);
        return Object(static_cast<IWbemClassObject*>(found));
    }

    /// Status of the method for this policy object; null leaves the parameter NULL.
    std::uint32_t set(std::size_t diskIndex, IWbemClassObject* policy) {
        const Object in = inParameters(L"DSM_LB_Operations", L"DSMSetLoadBalancePolicy");
        if (policy != nullptr) {
            policy->AddRef();
            OwnedVariant value;
            value->vt = VT_UNKNOWN;
            value->punkVal = policy;
            put(*in, L"LoadBalancePolicy", std::move(value));
        }
        const std::wstring path = pathOf(L"DSM_LB_Operations", disk(diskIndex).instanceName);
        EXPECT_EQ(execute(path, L"DSMSetLoadBalancePolicy", in.get()), S_OK);
        return answer(L"Status");
    }

    std::uint32_t set(std::size_t diskIndex, std::uint32_t policy) {
        const Object requested = policyObject(diskIndex);
        put(*requested, L"LoadBalancePolicy", policy);
        return set(diskIndex, requested.get());
    }

    /// Sets one member of the disk's path in the client's copy of the policy object.
    void setPathMember(IWbemClassObject& policy, LONG index, const wchar_t* member,
                       OwnedVariant number) {
        OwnedVariant paths = get(policy, L"DSM_Paths");
        IUnknown* path = nullptr;
        ASSERT_EQ(SafeArrayGetElement(paths->parray, &index, &path), S_OK);
        put(*static_cast<IWbemClassObject*>(path), member, std::move(number));
        path->Release();
        put(policy, L"DSM_Paths", std::move(paths));
    }
};

TEST_F(PolicyMethodsTest, Policy_IsReadBackFromBothClasses) {
    EXPECT_EQ(set(0, kRoundRobin), kSuccess);
    EXPECT_EQ(lun(0).policy, kRoundRobin);
    EXPECT_EQ(disk(0).policy, kRoundRobin);
    EXPECT_EQ(lun(1).policy, kQueueDepth);
}

TEST_F(PolicyMethodsTest, States_FollowThePolicy) {
    EXPECT_EQ(set(0, kRoundRobin), kSuccess);
    EXPECT_THAT(states(0), ElementsAre(1, 1, 1, 1));
    EXPECT_EQ(set(0, kSubset), kSuccess);
    EXPECT_THAT(states(0), ElementsAre(1, 1, 2, 2));
    EXPECT_EQ(set(0, kFailOver), kSuccess);
    EXPECT_THAT(states(0), ElementsAre(1, 2, 2, 2));
    EXPECT_EQ(set(0, kLeastBlocks), kSuccess);
    EXPECT_THAT(states(0), ElementsAre(1, 1, 1, 1));
    EXPECT_EQ(set(0, kWeighted), kSuccess);
    EXPECT_THAT(states(0), ElementsAre(1, 2, 2, 2));
}

TEST_F(PolicyMethodsTest, PrimaryPathAndWeight_AreTakenOver) {
    const Object policy = policyObject(0);
    put(*policy, L"LoadBalancePolicy", kFailOver);
    for (LONG index = 0; index < 4; ++index) {
        setPathMember(*policy, index, L"PrimaryPath", variantOf(LONG{index == 2 ? 1 : 0}));
        setPathMember(*policy, index, L"PathWeight", variantOf(index * 7));
    }
    EXPECT_EQ(set(0, policy.get()), kSuccess);
    EXPECT_THAT(primaries(0), ElementsAre(false, false, true, false));
    EXPECT_THAT(weights(0), ElementsAre(0, 7, 14, 21));
    EXPECT_THAT(states(0), ElementsAre(2, 2, 1, 2));
    EXPECT_TRUE(disk(0).policyPaths[2].isPrimary);
    EXPECT_EQ(disk(0).policyPaths[3].weight, 21u);
}

TEST_F(PolicyMethodsTest, FailOverWithoutPrimaryPath_TheFirstOneBecomesPrimary) {
    const Object policy = policyObject(0);
    put(*policy, L"LoadBalancePolicy", kFailOver);
    for (LONG index = 0; index < 4; ++index) {
        setPathMember(*policy, index, L"PrimaryPath", variantOf(LONG{0}));
    }
    EXPECT_EQ(set(0, policy.get()), kSuccess);
    EXPECT_THAT(primaries(0), ElementsAre(true, false, false, false));
    EXPECT_THAT(states(0), ElementsAre(1, 2, 2, 2));
}

TEST_F(PolicyMethodsTest, FailOver_PrimaryPathDisabled_AnotherStandsInWithoutItsRank) {
    ASSERT_EQ(run(0, L"SetDisabled", 0x101), kSuccess);
    const Object policy = policyObject(0);
    put(*policy, L"LoadBalancePolicy", kFailOver);
    setPathMember(*policy, 1, L"PrimaryPath", variantOf(LONG{0}));
    EXPECT_EQ(set(0, policy.get()), kSuccess);
    EXPECT_THAT(primaries(0), ElementsAre(true, false, false, false));
    EXPECT_THAT(states(0), ElementsAre(4, 1, 2, 2));
}

TEST_F(PolicyMethodsTest, FailedAndDisabledPaths_StayAsTheyAre) {
    loadHost(L"degraded");
    EXPECT_EQ(set(3, kRoundRobin), kSuccess);
    EXPECT_THAT(states(3), ElementsAre(1, 1, 3, 4));
}

TEST_F(PolicyMethodsTest, DiskOfAnotherDsm_OnlyMpioKnowsIt) {
    const std::size_t otherDisk = 7;
    const auto statesBefore = disk(otherDisk).paths.at(0).state;
    EXPECT_EQ(set(otherDisk, kWeighted), kSuccess);
    EXPECT_EQ(disk(otherDisk).policy, kWeighted);
    EXPECT_EQ(disk(otherDisk).paths.at(0).state, statesBefore);
}

TEST_F(PolicyMethodsTest, PolicyThatTheStorageDoesNotSupport_Refused) {
    const std::wstring before = host().dump();
    EXPECT_EQ(set(4, kLeastBlocks), kNotSupportedByStorage);
    EXPECT_EQ(set(0, kVendorSpecific), kNotSupportedByStorage);
    EXPECT_EQ(host().dump(), before);
}

TEST_F(PolicyMethodsTest, NumberThatIsNoPolicy_Invalid) {
    const std::wstring before = host().dump();
    for (const std::uint32_t number : {0u, 8u, 0x105u, 0xFFFFFFFFu}) {
        EXPECT_EQ(set(0, number), kInvalidParameter) << number;
    }
    const Object policy = policyObject(0);
    OwnedVariant null;
    null->vt = VT_NULL;
    put(*policy, L"LoadBalancePolicy", std::move(null));
    EXPECT_EQ(set(0, policy.get()), kInvalidParameter);
    EXPECT_EQ(set(0, nullptr), kInvalidParameter);
    EXPECT_EQ(host().dump(), before);
}

TEST_F(PolicyMethodsTest, PathThatTheDiskDoesNotHave_Invalid) {
    const std::wstring before = host().dump();
    const Object policy = policyObject(0);
    setPathMember(*policy, 3, L"DsmPathId", variantOf(L"12345"));
    EXPECT_EQ(set(0, policy.get()), kInvalidParameter);
    EXPECT_EQ(host().dump(), before);
}

}  // namespace
}  // namespace quista::test

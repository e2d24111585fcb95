// LUNs that are added to a host whose DSM runs.
#include <gmock/gmock.h>

#include "tests/simulator/driver/driver_fixture.h"
#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

constexpr const wchar_t* kName = L"MPIO\\Disk&New_0";

class NewLunsTest : public DriverTest {
  protected:
    /// A LUN of two paths with further assignments.
    void addLun(const std::wstring& assignments = L"") {
        load(
            LR"(
            instance of KORVADSM_LUNINFO
            {
                InstanceName = "MPIO\\Disk&New_0";
                NumberOfPaths = 2;
                Paths =
                {
                    instance of KORVADSM_PATHINFO { DsmId = 0x9901; PathId = 1; PathState = 1; },
                    instance of KORVADSM_PATHINFO { DsmId = 0x9902; PathId = 2; PathState = 2; }
                };
                )" +
            assignments +
            LR"(
            };
            instance of DSM_QueryLBPolicy
            {
                InstanceName = "MPIO\\Disk&New_0";
                LoadBalancePolicy = instance of DSM_Load_Balance_Policy { DSMPathCount = 0; };
            };)");
    }

    simulator::CimInstancePtr newLun(std::wstring_view className = L"KORVADSM_LUNINFO") {
        for (const auto& each : host_.instances(kWmi, className)) {
            if (textOf(*each, L"InstanceName") == kName) return each;
        }
        ADD_FAILURE() << "no such LUN";
        return nullptr;
    }

    void readHost() { host_ = repository(); }

    std::vector<std::uint64_t> newStates() {
        std::vector<std::uint64_t> all;
        for (const auto& path : objectsOf(*newLun(), L"Paths")) {
            all.push_back(numberOf(*path, L"PathState"));
        }
        return all;
    }

    simulator::Repository host_;
};

TEST_F(NewLunsTest, GetTheDefaultPolicyInBothClasses) {
    ASSERT_EQ(change(L"KORVADSM", L"DefaultLoadBalancePolicy", variantOf(4)), S_OK);
    addLun();
    readHost();
    EXPECT_EQ(numberOf(*newLun(), L"KorvaDSMLoadBalancePolicy"), kQueueDepth);
    const auto policy = objectOf(*newLun(L"DSM_QueryLBPolicy"), L"LoadBalancePolicy");
    EXPECT_EQ(numberOf(*policy, L"LoadBalancePolicy"), kQueueDepth);
    EXPECT_THAT(newStates(), ElementsAre(1, 1));
}

TEST_F(NewLunsTest, GetTheReservationKey) {
    const std::vector<std::uint8_t> key = {1, 2, 3, 4, 5, 6, 7, 8};
    ASSERT_EQ(change(L"KORVADSM", L"ReservationKey", variantOf(key)), S_OK);
    addLun();
    readHost();
    EXPECT_EQ(bytesOf(*newLun(), L"ReservationKey"), key);
}

TEST_F(NewLunsTest, KeepWhatTheyBring) {
    addLun(L"KorvaDSMLoadBalancePolicy = 6; ReservationKey = { 9 };");
    readHost();
    EXPECT_EQ(numberOf(*newLun(), L"KorvaDSMLoadBalancePolicy"), kLeastBlocks);
    EXPECT_THAT(bytesOf(*newLun(), L"ReservationKey"), ElementsAre(9));
    EXPECT_THAT(newStates(), ElementsAre(1, 2));
}

TEST_F(NewLunsTest, KnownLuns_AreLeftAlone) {
    addLun(L"KorvaDSMLoadBalancePolicy = 6;");
    addLun();
    readHost();
    EXPECT_TRUE(newLun()->find(L"KorvaDSMLoadBalancePolicy")->isNull());
}

TEST_F(NewLunsTest, WithoutADsm_NothingIsGiven) {
    host().removeInstances(L"root\\wmi", L"KORVADSM");
    addLun();
    readHost();
    EXPECT_TRUE(newLun()->find(L"KorvaDSMLoadBalancePolicy")->isNull());
    EXPECT_TRUE(newLun()->find(L"ReservationKey")->isNull());
}

TEST_F(NewLunsTest, DsmThatComesInTheSameText_DoesNotRunYet) {
    const std::wstring text = [&] {
        host().removeInstances(L"root\\wmi", L"KORVADSM");
        addLun();
        loadHostText(host().dump());
        return host().dump();
    }();
    host().clear();
    load(text +
         LR"(#pragma namespace("\\\\.\\root\\wmi")
                    instance of KORVADSM { InstanceName = "a"; DefaultLoadBalancePolicy = 2; };)");
    readHost();
    EXPECT_TRUE(newLun()->find(L"KorvaDSMLoadBalancePolicy")->isNull());
}

}  // namespace
}  // namespace quista::test

// Every WMI call of the presence exports fails in turn, with results of all kinds.
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mpio/presence_test.h"

namespace quista::test {
namespace {

using simulator::CallRecord;
using simulator::LiveObjects;

const unsigned long kResults[] = {0x80004005, 0x80041001, 0x80041002, 0x800706BA,
                                  0x80070005, 1,          2,          0x40004};

struct Failure {
    LogLines log;
    unsigned objects = 0;  ///< how many objects stay unreleased
};

/// What the failure of one call leaves, with the host of the fixture below.
Failure failureOf(const CallRecord& call, unsigned occurrence, unsigned long result) {
    // The general error is only logged as the result of Next.
    const auto only = [&](const std::string& place) {
        return result == DSM_ERROR ? LogLines{} : LogLines{controllerFailure(place, result)};
    };
    if (call.method == L"CreateInstanceEnum") {
        return {only("MPIOControllerConfig::CreateInstanceEnum")};
    }
    if (call.method == L"Next") return {{controllerEnd(result)}};
    const unsigned behind = 2 - occurrence;
    if (call.method == L"QueryInterface") {
        return {{controllerFailure("ControllerInfo::Get(AssociatedDsm)", kNoObject)}, behind};
    }
    const std::string property(call.detail.begin(), call.detail.end());
    if (call.className == kControllerClass) {
        return {only("ControllerInfo::Get(" + property + ")"), behind};
    }
    LogLines lines = only("MPIOControllerConfig::Get(" + property + ")");
    lines.push_back(controllerEnd());
    return {lines};
}

class PresenceFailingCallsTest : public PresenceTest {
  protected:
    PresenceFailingCallsTest() {
        openWith({controller(kVendorDsm), controller(kOtherDsm)});
        readConfiguration();
        calls_ = host->trace();
    }

    /// Lets each call of the first reading fail in turn with every result and runs the check.
    void failEachCall(const std::function<void(const Failure&)>& check) {
        ASSERT_GE(calls_.size(), 10u);
        for (std::size_t i = 0; i < calls_.size(); ++i) {
            const CallRecord& call = calls_[i];
            const auto same = [&](const CallRecord& other) {
                return other.method == call.method && other.className == call.className &&
                       other.detail == call.detail;
            };
            const auto end = calls_.begin() + static_cast<std::ptrdiff_t>(i) + 1;
            const auto occurrence = static_cast<unsigned>(std::count_if(calls_.begin(), end, same));
            for (const unsigned long result : kResults) {
                SCOPED_TRACE(testing::Message() << testing::PrintToString(callText(call)) << " "
                                                << occurrence << " gives 0x" << std::hex << result);
                host->clearFaults();
                host.fail(call.interfaceName, call.method, asResult(result), call.className,
                          call.method == L"Get" ? call.detail : L"", occurrence, 1);
                log.clear();
                const Failure failure = failureOf(call, occurrence, result);
                const LiveObjectsCheck live(host, {.objects = failure.objects});
                check(failure);
                EXPECT_EQ(log.lines(), failure.log);
            }
        }
    }

  private:
    std::vector<CallRecord> calls_;
};

TEST_F(PresenceFailingCallsTest, Present) {
    failEachCall([](const Failure&) { EXPECT_EQ(isPresent(), (Flag{DSM_WMI_PARSING_ERROR, 0})); });
}

TEST_F(PresenceFailingCallsTest, Loaded) {
    failEachCall([](const Failure&) { EXPECT_EQ(DSMIsLoaded(), 0); });
}

TEST_F(PresenceFailingCallsTest, Registered) {
    failEachCall([](const Failure&) { EXPECT_EQ(isRegistered(), 0); });
}

TEST_F(PresenceFailingCallsTest, Installed) {
    failEachCall([](const Failure&) {
        EXPECT_EQ(isInstalled(), (Flag{DSM_WMI_PARSING_ERROR, 0}))
            << "though the second reading succeeds";
    });
}

TEST_F(PresenceFailingCallsTest, Configuration) {
    failEachCall([](const Failure&) {
        const AllocationScope allocations;
        const ReadConfiguration read = readConfiguration();
        EXPECT_EQ(read.status, DSM_WMI_PARSING_ERROR);
        EXPECT_EQ(read.block, nullptr);
        EXPECT_THAT(allocations.survivors(), testing::Contains(kConfigurationSize).Times(1));
    });
}

TEST_F(PresenceFailingCallsTest, SuccessWithoutEnumeratorOrInstance) {
    host.failEnumeration(kConfigurationClass, S_OK);
    EXPECT_EQ(isPresent(), (Flag{DSM_WMI_PARSING_ERROR, 0}));
    EXPECT_THAT(log.take(), testing::ElementsAre(controllerFailure(
                                "MPIOControllerConfig::CreateInstanceEnum", kNoObject)));
    host->clearFaults();
    host.failNext(kConfigurationClass, S_OK);
    EXPECT_EQ(isPresent(), (Flag{DSM_WMI_PARSING_ERROR, 0}));
    EXPECT_THAT(log.take(), testing::ElementsAre(controllerEnd(kNoObject)));
}

}  // namespace
}  // namespace quista::test

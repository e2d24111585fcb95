// Lets every WMI call of an export fail in turn, with results of all kinds.
#pragma once

#include <functional>
#include <string>

#include "tests/mpio/mpio_test.h"

namespace quista::test {

/// Stands in an expected outcome for the result of the call that failed.
inline constexpr unsigned long kResult = 0xFFFFFFFF;

/// What is expected of an export one of whose calls failed.
struct Outcome {
    unsigned long status = 0;
    LogLines log{};
    simulator::LiveObjects kept{};
};

class EachCallFailsTest : public MpioTest {
  protected:
    using Export = std::function<unsigned long()>;
    /// What happens when the `occurrence`th such call fails. Calls are named as by `callText`.
    using Expectation = std::function<Outcome(const std::wstring& call, unsigned occurrence)>;

    /// Runs an export as often as it makes calls and there are results to fail with. It succeeds
    /// when nothing fails.
    void failEachCall(const Export& run, const Expectation& expected);

  private:
    void failCall(const simulator::CallRecord& call, unsigned occurrence, unsigned long result);
    void check(const Export& run, const Outcome& outcome, bool isNext, unsigned long result);
};

}  // namespace quista::test

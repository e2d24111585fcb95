// The fixture of the tests that steer the DSM: recorded calls, and every one of them failing in
// turn.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "quista/control.h"
#include "quista/status.h"
#include "tests/luns/luns_test.h"

namespace quista::test {

/// Stands in an expected log for the result of the call that failed.
inline constexpr unsigned long kResult = 0xFFFFFFFF;
/// The normal end of an enumeration.
inline constexpr unsigned long kEnd = 1;
inline constexpr unsigned long kNotFoundCode = 0x80041002;

/// What a call with one failing step gives and leaves.
struct Outcome {
    unsigned long status = 0;
    LogLines log{};
    simulator::LiveObjects kept{};
    std::size_t keptTexts = 0;
};

/// A recorded call in short: "CreateInstanceEnum KORVADSM", "Get KORVADSM_PATHINFO.DsmId".
std::wstring callText(const simulator::CallRecord& call);

class ControlTest : public LunsTest {
  protected:
    using Export = std::function<unsigned long()>;
    /// What happens when the `occurrence`th such call fails.
    using Expectation = std::function<Outcome(const std::wstring& call, unsigned occurrence)>;

    /// The recorded calls, the casts between interfaces left out.
    std::vector<std::wstring> calls() const;
    std::size_t countCalls(const std::wstring& call) const;

    /// Gives an out-parameter of a driver's method its value.
    void setMethodResult(const wchar_t* className, const wchar_t* method, const wchar_t* parameter,
                         unsigned long value);

    /// Runs the export once, then once for each call that it made and each kind of result, with
    /// this call failing.
    void failEachCall(const Export& run, const Expectation& expected);

  private:
    void failCall(const simulator::CallRecord& call, unsigned occurrence, unsigned long result);
    void check(const Export& run, const Outcome& outcome, unsigned long result);
};

}  // namespace quista::test

#include "tests/mpio/each_call_fails.h"

#include <algorithm>

namespace quista::test {

using simulator::CallRecord;
using simulator::LiveObjects;

namespace {

/// Failures, successes that deliver nothing, and codes with a text of the system's.
const unsigned long kResults[] = {0x80004005, 0x80041001, 0x80041002, 0x800706BA, 0x80070005,
                                  0xC0000001, 1,          2,          0x40004,    0x40005};

/// The general error is never logged, but as the result of Next it is the end of an enumeration.
LogLines withResult(const LogLines& lines, bool isNext, unsigned long result) {
    LogLines expected;
    for (LogLine line : lines) {
        if (line.code == kResult && result == DSM_ERROR && !isNext) continue;
        if (line.code == kResult) line.code = result;
        expected.push_back(line);
    }
    return expected;
}

bool isSameCall(const CallRecord& left, const CallRecord& right) {
    return left.interfaceName == right.interfaceName && left.method == right.method &&
           left.className == right.className && left.detail == right.detail;
}

/// Whether a fault goes by what the call's detail names: a property or a method.
bool namesProperty(const CallRecord& call) {
    const auto& method = call.method;
    return method == L"Get" || method == L"Put" || method == L"GetMethod" ||
           method == L"ExecMethod";
}

LiveObjects operator+(const LiveObjects& left, const LiveObjects& right) {
    return {left.locators + right.locators, left.services + right.services,
            left.enumerators + right.enumerators, left.objects + right.objects,
            left.compilers + right.compilers};
}

}  // namespace

void EachCallFailsTest::failEachCall(const Export& run, const Expectation& expected) {
    host->clearTrace();
    EXPECT_EQ(run(), DSM_SUCCESS);
    const std::vector<CallRecord> clean = host->trace();
    for (std::size_t i = 0; i < clean.size(); ++i) {
        const auto occurrence = static_cast<unsigned>(
            std::count_if(clean.begin(), clean.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                          [&](const CallRecord& call) { return isSameCall(call, clean[i]); }));
        const Outcome outcome = expected(callText(clean[i]), occurrence);
        for (const unsigned long result : kResults) {
            SCOPED_TRACE(testing::Message() << "occurrence " << occurrence << " of "
                                            << testing::PrintToString(callText(clean[i]))
                                            << " gives 0x" << std::hex << result);
            failCall(clean[i], occurrence, result);
            check(run, outcome, clean[i].method == L"Next", result);
        }
    }
    host->clearFaults();
}

void EachCallFailsTest::failCall(const CallRecord& call, unsigned occurrence,
                                 unsigned long result) {
    const std::wstring property = namesProperty(call) ? call.detail : L"";
    host->clearFaults();
    host.fail(call.interfaceName, call.method, asResult(result), call.className, property,
              occurrence, 1);
}

void EachCallFailsTest::check(const Export& run, const Outcome& outcome, bool isNext,
                              unsigned long result) {
    log.clear();
    const LiveObjects before = host->liveObjects();
    EXPECT_EQ(run(), outcome.status == kResult ? result : outcome.status);
    EXPECT_EQ(log.lines(), withResult(outcome.log, isNext, result));
    EXPECT_EQ(host->liveObjects(), before + outcome.kept);
}

}  // namespace quista::test

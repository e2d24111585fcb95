#include "tests/control/control_test.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>

namespace quista::test {

namespace {

using simulator::CallRecord;
using simulator::LiveObjects;

/// Failures, successes that deliver nothing, and codes with a text of the system's.
const unsigned long kResults[] = {0x80004005, 0x80041001, 0x80041002, 0x800706BA,
                                  0xC0000001, 1,          0x40004};

/// The general error is never logged, but as the result of Next it is the end of an enumeration.
LogLines withResult(const LogLines& lines, unsigned long result) {
    LogLines expected;
    for (LogLine line : lines) {
        if (line.code == kResult) line.code = result;
        const bool isNext = line.place.find("::Next") != std::string::npos;
        if (line.code != DSM_ERROR || isNext) expected.push_back(line);
    }
    return expected;
}

bool isSameCall(const CallRecord& left, const CallRecord& right) {
    return left.interfaceName == right.interfaceName && callText(left) == callText(right);
}

LiveObjects operator+(const LiveObjects& left, const LiveObjects& right) {
    return {left.locators + right.locators, left.services + right.services,
            left.enumerators + right.enumerators, left.objects + right.objects,
            left.compilers + right.compilers};
}

bool isOfProperty(const CallRecord& call) {
    return call.method == L"Get" || call.method == L"Put" || call.method == L"GetMethod" ||
           call.method == L"ExecMethod";
}

}  // namespace

std::wstring callText(const CallRecord& call) {
    std::wstring text = call.method + L" " + call.className;
    if (isOfProperty(call)) text += L"." + call.detail;
    return text;
}

std::vector<std::wstring> ControlTest::calls() const {
    std::vector<std::wstring> texts;
    for (const CallRecord& call : host->trace()) {
        if (call.method != L"QueryInterface") texts.push_back(callText(call));
    }
    return texts;
}

std::size_t ControlTest::countCalls(const std::wstring& call) const {
    const std::vector<std::wstring> made = calls();
    return static_cast<std::size_t>(std::ranges::count(made, call));
}

void ControlTest::setMethodResult(const wchar_t* className, const wchar_t* method,
                                  const wchar_t* parameter, unsigned long value) {
    host->setMethodResult(className, method, parameter,
                          Value::bits(VT_I4, static_cast<LONG>(value)).get());
}

void ControlTest::failEachCall(const Export& run, const Expectation& expected) {
    log.clear();
    host->clearTrace();
    EXPECT_EQ(run(), DSM_SUCCESS);
    const std::vector<CallRecord> clean = host->trace();
    ASSERT_FALSE(clean.empty());
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
            check(run, outcome, result);
        }
    }
    host->clearFaults();
}

void ControlTest::failCall(const CallRecord& call, unsigned occurrence, unsigned long result) {
    host->clearFaults();
    host.fail(call.interfaceName, call.method, resultOf(result), call.className,
              isOfProperty(call) ? call.detail : L"", occurrence, 1);
}

void ControlTest::check(const Export& run, const Outcome& outcome, unsigned long result) {
    log.clear();
    const LiveObjects before = host->liveObjects();
    const AllocationScope scope;
    EXPECT_EQ(run(), outcome.status);
    EXPECT_EQ(log.lines(), withResult(outcome.log, result));
    EXPECT_EQ(host->liveObjects(), before + outcome.kept);
    EXPECT_EQ(scope.survivingTexts().size(), outcome.keptTexts);
    EXPECT_EQ(scope.survivors().size(), outcome.keptTexts);
}

}  // namespace quista::test

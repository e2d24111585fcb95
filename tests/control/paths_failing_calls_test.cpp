// Every WMI call of a path operation fails in turn, with results of all kinds.
#include <gtest/gtest.h>

#include "tests/control/paths_test.h"

namespace quista::test {
namespace {

/// The LUN of the path is the second; its path is the third of all, with one behind it.
constexpr unsigned long long kWantedPath = 3;
constexpr unsigned kWantedPosition = 3;

bool isPathRead(const std::wstring& call) {
    return call == L"QueryInterface KORVADSM_PATHINFO" || call == L"Get KORVADSM_PATHINFO.DsmId";
}

Outcome afterFailureInSearch(const std::wstring& call, unsigned occurrence) {
    if (call.starts_with(L"CreateInstanceEnum")) {
        return {DSM_PATH_NOT_FOUND, {{"CallMethodforITL::CreateInstanceEnum", kResult}}};
    }
    if (call.starts_with(L"Next")) return {DSM_PATH_NOT_FOUND, {{kPathNext, kResult}}};
    if (isPathRead(call)) {
        if (occurrence != kWantedPosition) return {};
        return {DSM_PATH_NOT_FOUND, {{kPathNext, kEnd}}};
    }
    if (call.ends_with(L".NumberOfPaths")) {
        return {DSM_WMI_FAILURE, {{"CallMethodforITL: NumberOfPaths", kResult}}};
    }
    if (call.ends_with(L".InstanceName")) {
        return {DSM_WMI_FAILURE, {{"CallMethodforITL::Get", kResult}}};
    }
    return {DSM_WMI_FAILURE, {{"CallMethodforITL: Paths", kResult}}};
}

Outcome afterFailureInCall(const std::wstring& call, unsigned occurrence) {
    if (call.starts_with(L"GetObjectText")) {
        return {DSM_ERROR, {{"CallMethodforITL::GetObjectText", kResult}}};
    }
    if (call.starts_with(L"GetObject")) {
        return {DSM_ERROR, {{"CallMethodforITL::GetObject", kResult}}};
    }
    if (call.starts_with(L"GetMethod")) {
        return {DSM_ERROR, {{"CallMethodforITL::GetMethod", kResult}}};
    }
    if (call.starts_with(L"SpawnInstance")) {
        return {DSM_ERROR, {{"CallMethodforITL::SpawnInstance", kResult}}};
    }
    if (call.starts_with(L"Put")) {
        return {DSM_WMI_FAILURE,
                {{"CallMethodforITL::Put", kResult}, {"CallMethodforITL::ExecMethod", kResult}}};
    }
    if (call.starts_with(L"ExecMethod")) return {DSM_ERROR, {}};
    if (call.ends_with(L".ReturnCode")) {
        return {DSM_WMI_FAILURE, {{"CallMethodforITL::Get(ReturnCode)", kResult}}};
    }
    return afterFailureInSearch(call, occurrence);
}

class PathFailingCallsTest : public PathsTest, public testing::WithParamInterface<PathOperation> {};

INSTANTIATE_TEST_SUITE_P(Exports, PathFailingCallsTest, testing::ValuesIn(kPathOperations));

TEST_P(PathFailingCallsTest, EachCall) {
    openWith({lunOfPaths(L"S1", {1}), lunOfPaths(L"S2", {2, 3, 4})});
    setReturnCode(GetParam().method, 0x3FFFFFFF);
    failEachCall([] { return GetParam().run(kWantedPath); }, afterFailureInCall);
}

}  // namespace
}  // namespace quista::test

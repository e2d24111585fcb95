// The fixture of the load-balance policies: the driver's default, and MPIO's classes of one LUN.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/control/control_test.h"

namespace quista::test {

inline constexpr const wchar_t* kDsmClass = L"KORVADSM";
inline constexpr const wchar_t* kDefaultPolicy = L"DefaultLoadBalancePolicy";
inline constexpr const wchar_t* kQueryClass = L"DSM_QueryLBPolicy";
inline constexpr const wchar_t* kSupportedClass = L"DSM_QuerySupportedLBPolicies";
inline constexpr const wchar_t* kOperationsClass = L"DSM_LB_Operations";
inline constexpr const wchar_t* kPolicyClass = L"DSM_Load_Balance_Policy";
inline constexpr const wchar_t* kPolicyPathClass = L"MPIO_DSM_Path";

/// The lines of a serial number that the DSM does not know.
inline const LogLines kUnknownSerial = {
    {"GetInstance_for_SerialNo: IEnumWbemClassObject::Next", kEnd},
    {"GetInstance_for_SerialNo", DSM_SERIAL_NOT_FOUND}};

MofObject policyObject(int number);
/// MPIO's view of a disk: policy 3 on paths with these PrimaryPath values.
MofObject queriedPolicy(const std::wstring& instanceName, const std::vector<int>& primary);
MofObject supportedPolicies(const std::wstring& instanceName, const std::vector<int>& numbers);
MofObject operations(const std::wstring& instanceName);

/// A host with the DSM's and MPIO's policy classes, and the LUN S1 called D\1.
class PoliciesTest : public ControlTest {
  protected:
    PoliciesTest();

    void addAndOpen(std::initializer_list<MofObject> instances);
    void expectLog(const LogLines& lines) { EXPECT_EQ(log.take(), lines); }

    wchar_t serial[3] = L"S1";
    wchar_t unknownSerial[3] = L"S2";
};

}  // namespace quista::test

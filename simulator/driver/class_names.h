// The classes that the simulated drivers publish, as far as operations change them.
#pragma once

namespace quista::simulator {

inline constexpr wchar_t kDriverNamespace[] = L"root\\wmi";

inline constexpr wchar_t kDsmClass[] = L"KORVADSM";
inline constexpr wchar_t kLunClass[] = L"KORVADSM_LUNINFO";
inline constexpr wchar_t kDescriptorClass[] = L"MPIO_GET_DESCRIPTOR";
inline constexpr wchar_t kPolicyClass[] = L"DSM_QueryLBPolicy";
inline constexpr wchar_t kSupportedPoliciesClass[] = L"DSM_QuerySupportedLBPolicies";
inline constexpr wchar_t kPolicyOperationsClass[] = L"DSM_LB_Operations";
inline constexpr wchar_t kRegistrationClass[] = L"MPIO_REGISTERED_DSM";
inline constexpr wchar_t kRegistrationMethodsClass[] = L"MPIO_WMI_METHODS";

}  // namespace quista::simulator

#include "tests/control/policies_test.h"

namespace quista::test {

MofObject policyObject(int number) {
    return MofObject(kPolicyClass).number(L"Version", 1).number(L"LoadBalancePolicy", number);
}

MofObject queriedPolicy(const std::wstring& instanceName, const std::vector<int>& primary) {
    std::vector<MofObject> paths;
    for (const int flag : primary) {
        const auto position = static_cast<std::int64_t>(paths.size());
        paths.push_back(MofObject(kPolicyPathClass)
                            .unsignedNumber(L"DsmPathId", 0x100u + paths.size())
                            .number(L"PathWeight", position)
                            .number(L"PrimaryPath", flag));
    }
    return MofObject(kQueryClass)
        .text(L"InstanceName", instanceName)
        .boolean(L"Active", true)
        .object(L"LoadBalancePolicy",
                policyObject(3)
                    .number(L"DSMPathCount", static_cast<std::int64_t>(paths.size()))
                    .objects(L"DSM_Paths", paths));
}

MofObject supportedPolicies(const std::wstring& instanceName, const std::vector<int>& numbers) {
    std::vector<MofObject> policies;
    for (const int number : numbers) policies.push_back(policyObject(number));
    return MofObject(kSupportedClass)
        .text(L"InstanceName", instanceName)
        .boolean(L"Active", true)
        .number(L"SupportedLBPoliciesCount", static_cast<std::int64_t>(policies.size()))
        .objects(L"Supported_LB_Policies", policies);
}

MofObject operations(const std::wstring& instanceName) {
    return MofObject(kOperationsClass).text(L"InstanceName", instanceName).boolean(L"Active", true);
}

PoliciesTest::PoliciesTest() {
    host.loadClasses(L"lbpolicy");
    host.add(namedLun(L"D\\1", L"S1"));
}

void PoliciesTest::addAndOpen(std::initializer_list<MofObject> instances) {
    for (const MofObject& instance : instances) host.add(instance);
    openSession();
}

}  // namespace quista::test

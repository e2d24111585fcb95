#include "tests/control/paths_test.h"

#include "tests/support/text.h"

namespace quista::test {

std::ostream& operator<<(std::ostream& out, const PathOperation& operation) {
    return out << narrow(operation.method);
}

const std::vector<PathOperation> kPathOperations = {
    {L"SetActive", KORVADSMMakeActivePath, true},
    {L"SetPassive", KORVADSMMakePassivePath, true},
    {L"SetEnabled", KORVADSMEnablePath},
    {L"SetDisabled", KORVADSMDisablePath},
    {L"SetWeight", [](unsigned long long pathId) { return KORVADSMSetPathWeight(pathId, 7); }},
    {L"UpdateRTPG",
     [](unsigned long long pathId) {
         return KORVADSMUpdateTPG(static_cast<unsigned long>(pathId));
     }},
};

MofObject lunOfPaths(const std::wstring& serial, const std::vector<std::int32_t>& dsmIds) {
    std::vector<MofObject> paths;
    for (const std::int32_t dsmId : dsmIds) {
        paths.push_back(MofObject(kPathClass).number(L"DsmId", dsmId).number(L"PathState", 1));
    }
    return lunWith(serial, paths);
}

std::vector<std::wstring> PathsTest::executed() const {
    std::vector<std::wstring> paths;
    for (const simulator::CallRecord& call : host->trace()) {
        if (call.method == L"ExecMethod") paths.push_back(call.path);
    }
    return paths;
}

}  // namespace quista::test

#include "simulator/driver/counters.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "simulator/com/wbem_result.h"
#include "simulator/driver/class_names.h"
#include "simulator/driver/instance_values.h"

namespace quista::simulator {
namespace {

CimInstance withoutNulls(CimInstance counters) {
    for (const CimProperty& member : counters.definition().properties) {
        if (counters.find(member.name)->isNull()) setNumber(counters, member.name, 0);
    }
    return counters;
}

/// False when the registration does not hold the DSM.
bool replaceCounters(CimInstance& registration, std::uint64_t context,
                     const CimInstance& counters) {
    std::vector<CimInstance> dsms = objectsOf(registration, L"DsmParameters");
    const auto dsm = std::ranges::find_if(dsms, [&](const CimInstance& candidate) {
        return numberOf(candidate, L"DsmContext") == context;
    });
    if (dsm == dsms.end()) return false;
    dsm->set(L"DsmCounters", CimValue::ofObject(counters));
    setObjects(registration, L"DsmParameters", dsms);
    return true;
}

}  // namespace

HRESULT setDsmCounters(const MethodCall& call) {
    if (call.inParameters == nullptr) return S_OK;
    const std::optional<std::uint64_t> context = numberOf(*call.inParameters, L"DSMcontext");
    const std::optional<CimInstance> counters = objectOf(*call.inParameters, L"DsmCounters");
    if (!context || !counters) return wbem(WBEM_E_INVALID_PARAMETER);
    for (const CimInstancePtr& each :
         call.repository.instances(call.nameSpace, kRegistrationClass)) {
        CimInstance registration = *each;
        if (!replaceCounters(registration, *context, withoutNulls(*counters))) continue;
        return wbem(call.repository.putInstance(call.nameSpace, registration));
    }
    return wbem(WBEM_E_INVALID_PARAMETER);
}

}  // namespace quista::simulator

#include "simulator/com/query_execution.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "simulator/com/wbem_result.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

bool isSelected(const WqlQuery& query, const CimProperty& property) {
    return std::ranges::any_of(query.properties(), [&](const std::wstring& name) {
        return equalNoCase(name, property.name);
    });
}

CimInstancePtr projected(const WqlQuery& query, const CimInstancePtr& instance) {
    if (query.properties().empty()) return instance;
    auto reduced = std::make_shared<CimClass>(instance->definition());
    std::erase_if(reduced->properties,
                  [&](const CimProperty& property) { return !isSelected(query, property); });
    return std::make_shared<const CimInstance>(instance->rebasedOn(std::move(reduced)));
}

}  // namespace

HRESULT resultOf(WqlStatus status) {
    switch (status) {
        case WqlStatus::ok:
            return S_OK;
        case WqlStatus::tooComplex:
            return wbem(WBEM_E_QUOTA_VIOLATION);
        case WqlStatus::invalid:
            break;
    }
    return wbem(WBEM_E_INVALID_QUERY);
}

bool fits(const WqlQuery& query, const CimClass& definition) {
    return query.isValidFor(definition) &&
           std::ranges::all_of(query.properties(), [&](const std::wstring& name) {
               return isSystemName(name) || definition.findProperty(name) != nullptr;
           });
}

ResultSet execute(const WqlQuery& query, const CimClassPtr& definition,
                  const Repository& repository, std::wstring_view nameSpace) {
    ResultSet results{.className = definition->name};
    for (const CimInstancePtr& instance : repository.instances(nameSpace, definition->name)) {
        if (!query.matches(*instance)) continue;
        results.objects.push_back(stateOfInstance(projected(query, instance), nameSpace));
    }
    return results;
}

}  // namespace quista::simulator

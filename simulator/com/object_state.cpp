#include "simulator/com/object_state.h"

#include <array>
#include <utility>

#include "simulator/repository/object_path.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

using SystemReader = CimValue (*)(const ObjectState&);

CimValue textOrNull(const std::wstring& text) {
    return text.empty() ? CimValue() : CimValue::ofText(text);
}

std::wstring relativePathOf(const ObjectState& state) {
    return state.isInstance() ? relativePath(*state.instance) : state.definition->name;
}

CimValue genus(const ObjectState& state) {
    return CimValue::ofSigned(state.isInstance() ? WBEM_GENUS_INSTANCE : WBEM_GENUS_CLASS);
}

CimValue className(const ObjectState& state) {
    return textOrNull(state.definition->name);
}

CimValue superclass(const ObjectState& state) {
    return textOrNull(state.definition->superclass);
}

CimValue dynasty(const ObjectState& state) {
    const CimClass& definition = *state.definition;
    return textOrNull(definition.ancestors.empty() ? definition.name : definition.ancestors.back());
}

CimValue relPath(const ObjectState& state) {
    return textOrNull(relativePathOf(state));
}

CimValue propertyCount(const ObjectState& state) {
    return CimValue::ofSigned(static_cast<std::int64_t>(state.definition->properties.size()));
}

CimValue derivation(const ObjectState& state) {
    CimValue::Array ancestors;
    for (const std::wstring& name : state.definition->ancestors) {
        ancestors.push_back(CimValue::ofText(name));
    }
    return CimValue::ofArray(std::move(ancestors));
}

CimValue server(const ObjectState& state) {
    return state.nameSpace.empty() ? CimValue() : CimValue::ofText(std::wstring(kServerName));
}

CimValue nameSpace(const ObjectState& state) {
    return textOrNull(state.nameSpace);
}

CimValue path(const ObjectState& state) {
    const std::wstring relative = relativePathOf(state);
    if (state.nameSpace.empty() || relative.empty()) return {};
    return CimValue::ofText(L"\\\\" + std::wstring(kServerName) + L"\\" + state.nameSpace + L":" +
                            relative);
}

struct SystemProperty {
    std::wstring_view name;
    CimType type;
    bool isArray;
    SystemReader read;
};

constexpr std::array kSystemProperties{
    SystemProperty{L"__GENUS", CimType::sint32, false, genus},
    SystemProperty{L"__CLASS", CimType::string, false, className},
    SystemProperty{L"__SUPERCLASS", CimType::string, false, superclass},
    SystemProperty{L"__DYNASTY", CimType::string, false, dynasty},
    SystemProperty{L"__RELPATH", CimType::string, false, relPath},
    SystemProperty{L"__PROPERTY_COUNT", CimType::sint32, false, propertyCount},
    SystemProperty{L"__DERIVATION", CimType::string, true, derivation},
    SystemProperty{L"__SERVER", CimType::string, false, server},
    SystemProperty{L"__NAMESPACE", CimType::string, false, nameSpace},
    SystemProperty{L"__PATH", CimType::string, false, path},
};

std::optional<PropertyReading> readSystemProperty(const ObjectState& state,
                                                  std::wstring_view name) {
    for (const SystemProperty& property : kSystemProperties) {
        if (!equalNoCase(property.name, name)) continue;
        return PropertyReading{CimDeclaredType{property.type, property.isArray, {}},
                               property.read(state), WBEM_FLAVOR_ORIGIN_SYSTEM};
    }
    return std::nullopt;
}

LONG originOf(const CimProperty& property, const CimClass& definition) {
    return equalNoCase(property.declaredIn, definition.name) ? WBEM_FLAVOR_ORIGIN_LOCAL
                                                             : WBEM_FLAVOR_ORIGIN_PROPAGATED;
}

bool isWanted(LONG origin, LONG wanted) {
    switch (wanted) {
        case WBEM_FLAG_LOCAL_ONLY:
            return origin == WBEM_FLAVOR_ORIGIN_LOCAL;
        case WBEM_FLAG_PROPAGATED_ONLY:
            return origin == WBEM_FLAVOR_ORIGIN_PROPAGATED;
        default:
            return wanted != WBEM_FLAG_SYSTEM_ONLY;
    }
}

}  // namespace

ObjectState stateOfClass(CimClassPtr definition, std::wstring_view nameSpace) {
    return {std::move(definition), nullptr, std::wstring(nameSpace), false};
}

ObjectState stateOfInstance(CimInstancePtr instance, std::wstring_view nameSpace) {
    CimClassPtr definition = instance->sharedDefinition();
    return {std::move(definition), std::move(instance), std::wstring(nameSpace), true};
}

std::optional<PropertyReading> readProperty(const ObjectState& state, std::wstring_view name) {
    if (isSystemName(name)) return readSystemProperty(state, name);
    const CimProperty* property = state.definition->findProperty(name);
    if (property == nullptr) return std::nullopt;
    const CimValue* value = state.isInstance() ? state.instance->find(name) : nullptr;
    return PropertyReading{property->type, value != nullptr ? *value : property->defaultValue,
                           originOf(*property, *state.definition)};
}

bool isSystemName(std::wstring_view name) {
    return name.starts_with(L"__");
}

std::vector<std::wstring> propertyNames(const ObjectState& state, LONG origin) {
    std::vector<std::wstring> names;
    if (origin == 0 || origin == WBEM_FLAG_SYSTEM_ONLY) {
        for (const SystemProperty& property : kSystemProperties) names.emplace_back(property.name);
    }
    for (const CimProperty& property : state.definition->properties) {
        if (isWanted(originOf(property, *state.definition), origin)) names.push_back(property.name);
    }
    return names;
}

CIMTYPE cimTypeNumber(const CimDeclaredType& type) {
    return static_cast<CIMTYPE>(type.base) | (type.isArray ? CIM_FLAG_ARRAY : 0);
}

}  // namespace quista::simulator

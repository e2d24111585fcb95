#include "simulator/repository/cim_class.h"

#include <algorithm>
#include <utility>

#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

template <typename Items>
auto findNamed(Items& items, std::wstring_view name) -> decltype(items.data()) {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const auto& item) { return equalNoCase(item.name, name); });
    return found == items.end() ? nullptr : &*found;
}

CimProperty asProperty(const CimParameter& parameter, const wchar_t* direction) {
    CimProperty property;
    property.name = parameter.name;
    property.type = parameter.type;
    property.qualifiers = parameter.qualifiers;
    property.qualifiers.put({direction, CimValue::ofBoolean(true), QualifierFlavor::none});
    return property;
}

CimClassPtr parametersClass(std::vector<CimProperty> properties) {
    if (properties.empty()) return nullptr;
    auto parameters = std::make_shared<CimClass>();
    parameters->name = L"__PARAMETERS";
    for (CimProperty& property : properties) property.declaredIn = parameters->name;
    parameters->properties = std::move(properties);
    return parameters;
}

}  // namespace

bool CimQualifier::operator==(const CimQualifier& other) const {
    return equalNoCase(name, other.name) && value == other.value && flavors == other.flavors;
}

const CimQualifier* CimQualifiers::find(std::wstring_view name) const {
    return findNamed(items_, name);
}

bool CimQualifiers::isSet(std::wstring_view name) const {
    const CimQualifier* qualifier = find(name);
    const bool* truth = qualifier ? qualifier->value.asBoolean() : nullptr;
    return truth && *truth;
}

void CimQualifiers::put(CimQualifier qualifier) {
    if (CimQualifier* known = findNamed(items_, qualifier.name))
        *known = std::move(qualifier);
    else
        items_.push_back(std::move(qualifier));
}

void CimQualifiers::remove(std::wstring_view name) {
    std::erase_if(items_, [&](const CimQualifier& item) { return equalNoCase(item.name, name); });
}

bool CimProperty::operator==(const CimProperty& other) const {
    return equalNoCase(name, other.name) && type == other.type &&
           defaultValue == other.defaultValue && qualifiers == other.qualifiers &&
           equalNoCase(declaredIn, other.declaredIn);
}

bool CimParameter::operator==(const CimParameter& other) const {
    return equalNoCase(name, other.name) && type == other.type && isIn == other.isIn &&
           isOut == other.isOut && qualifiers == other.qualifiers;
}

bool CimMethod::operator==(const CimMethod& other) const {
    return equalNoCase(name, other.name) && returnType == other.returnType &&
           parameters == other.parameters && qualifiers == other.qualifiers &&
           equalNoCase(declaredIn, other.declaredIn);
}

const CimProperty* CimClass::findProperty(std::wstring_view property) const {
    return findNamed(properties, property);
}

const CimMethod* CimClass::findMethod(std::wstring_view method) const {
    return findNamed(methods, method);
}

bool CimClass::hasKey() const {
    return std::any_of(properties.begin(), properties.end(),
                       [](const CimProperty& property) { return property.isKey(); });
}

bool CimClass::isA(std::wstring_view className) const {
    return equalNoCase(name, className) ||
           std::any_of(ancestors.begin(), ancestors.end(), [&](const std::wstring& ancestor) {
               return equalNoCase(ancestor, className);
           });
}

bool CimClass::operator==(const CimClass& other) const {
    return equalNoCase(name, other.name) && equalNoCase(superclass, other.superclass) &&
           qualifiers == other.qualifiers && properties == other.properties &&
           methods == other.methods;
}

CimClassPtr inSignature(const CimMethod& method) {
    std::vector<CimProperty> properties;
    for (const CimParameter& parameter : method.parameters)
        if (parameter.isIn) properties.push_back(asProperty(parameter, L"in"));
    return parametersClass(std::move(properties));
}

CimClassPtr outSignature(const CimMethod& method) {
    std::vector<CimProperty> properties;
    for (const CimParameter& parameter : method.parameters)
        if (parameter.isOut) properties.push_back(asProperty(parameter, L"out"));
    if (method.returnType) {
        CimParameter result;
        result.name = L"ReturnValue";
        result.type = *method.returnType;
        properties.push_back(asProperty(result, L"out"));
    }
    return parametersClass(std::move(properties));
}

}  // namespace quista::simulator

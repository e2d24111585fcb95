#include "simulator/mof/mof_writer.h"

#include <algorithm>
#include <set>
#include <utility>

#include "simulator/mof/mof_text.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

void appendInstance(std::wstring& text, const CimInstance& instance);

template <typename Items, typename Append>
void appendList(std::wstring& text, const Items& items, Append append) {
    const wchar_t* separator = L"";
    for (const auto& item : items) {
        text += separator;
        append(item);
        separator = L", ";
    }
}

void appendValue(std::wstring& text, CimType type, const CimValue& value) {
    if (value.isNull()) {
        text += L"NULL";
    } else if (const auto* elements = value.asArray()) {
        text += L'{';
        appendList(text, *elements,
                   [&](const CimValue& element) { appendValue(text, type, element); });
        text += L'}';
    } else if (const auto* object = value.asObject()) {
        appendInstance(text, **object);
    } else {
        text += mofScalar(type, value);
    }
}

void appendInstance(std::wstring& text, const CimInstance& instance) {
    text += L"\ninstance of " + instance.className() + L"\n{\n";
    const std::vector<CimProperty>& properties = instance.definition().properties;
    for (std::size_t i = 0; i < properties.size(); ++i) {
        const CimValue& value = instance.values()[i];
        if (value.isNull() && properties[i].defaultValue.isNull()) continue;
        text += L'\t' + properties[i].name + L" = ";
        appendValue(text, properties[i].type.base, value);
        text += L";\n";
    }
    text += L'}';
}

/// Qualifiers carry no type of their own: integers are written bare, of whatever size.
void appendQualifierValue(std::wstring& text, const CimValue& value) {
    if (const bool* truth = value.asBoolean(); truth && *truth) return;
    const bool isArray = value.asArray() != nullptr;
    if (!isArray) text += L'(';
    appendValue(text, CimType::sint32, value);
    if (!isArray) text += L')';
}

void appendQualifier(std::wstring& text, const CimQualifier& qualifier) {
    text += qualifier.name;
    appendQualifierValue(text, qualifier.value);
    if (qualifier.flavors == QualifierFlavor::none) return;
    text += L" :";
    for (const auto& [name, flavor] : kMofFlavors)
        if (hasFlavor(qualifier.flavors, flavor)) text.append(L" ").append(name);
}

void appendQualifiers(std::wstring& text, const CimQualifiers& qualifiers,
                      std::wstring_view separator) {
    if (qualifiers.empty()) return;
    text += L'[';
    appendList(text, qualifiers,
               [&](const CimQualifier& qualifier) { appendQualifier(text, qualifier); });
    text += L']';
    text += separator;
}

std::wstring typeText(const CimDeclaredType& type) {
    if (type.base == CimType::reference) return type.className + L" ref";
    if (type.base == CimType::object && !type.className.empty()) return type.className;
    return std::wstring(typeName(type.base));
}

void appendProperty(std::wstring& text, const CimProperty& property) {
    text += L'\t';
    appendQualifiers(text, property.qualifiers, L" ");
    text += typeText(property.type) + L' ' + property.name;
    if (property.type.isArray) text += L"[]";
    if (!property.defaultValue.isNull()) {
        text += L" = ";
        appendValue(text, property.type.base, property.defaultValue);
    }
    text += L";\n";
}

void appendParameter(std::wstring& text, const CimParameter& parameter) {
    CimQualifiers qualifiers;
    const CimValue present = CimValue::ofBoolean(true);
    if (parameter.isIn) qualifiers.put({L"in", present, QualifierFlavor::none});
    if (parameter.isOut) qualifiers.put({L"out", present, QualifierFlavor::none});
    for (const CimQualifier& qualifier : parameter.qualifiers) qualifiers.put(qualifier);
    appendQualifiers(text, qualifiers, L" ");
    text += typeText(parameter.type) + L' ' + parameter.name;
    if (parameter.type.isArray) text += L"[]";
}

void appendMethod(std::wstring& text, const CimMethod& method) {
    text += L'\t';
    appendQualifiers(text, method.qualifiers, L" ");
    text += (method.returnType ? typeText(*method.returnType) : L"void") + L' ' + method.name;
    text += L'(';
    appendList(text, method.parameters,
               [&](const CimParameter& parameter) { appendParameter(text, parameter); });
    text += L");\n";
}

/// Folded names of the classes that must be known before the definition can be read.
std::set<std::wstring> dependenciesOf(const CimClass& definition) {
    std::set<std::wstring> names;
    const auto addType = [&](const CimDeclaredType& type) {
        if (type.base == CimType::object) names.insert(foldCase(type.className));
    };
    names.insert(foldCase(definition.superclass));
    for (const CimProperty& property : definition.properties) addType(property.type);
    for (const CimMethod& method : definition.methods) {
        if (method.returnType) addType(*method.returnType);
        for (const CimParameter& parameter : method.parameters) addType(parameter.type);
    }
    names.erase(std::wstring());
    names.erase(foldCase(definition.name));
    return names;
}

/// Orders the classes so that each comes after those it needs. Classes that need one another in a
/// circle have no such order and come last.
std::vector<CimClassPtr> inReadingOrder(std::vector<CimClassPtr> waiting) {
    std::vector<CimClassPtr> ordered;
    std::set<std::wstring> pending;
    for (const CimClassPtr& each : waiting) pending.insert(foldCase(each->name));
    const auto isReady = [&](const CimClassPtr& candidate) {
        const std::set<std::wstring> needed = dependenciesOf(*candidate);
        return std::none_of(needed.begin(), needed.end(),
                            [&](const std::wstring& name) { return pending.contains(name); });
    };
    std::size_t before = 0;
    do {
        before = waiting.size();
        std::erase_if(waiting, [&](const CimClassPtr& candidate) {
            if (!isReady(candidate)) return false;
            pending.erase(foldCase(candidate->name));
            ordered.push_back(candidate);
            return true;
        });
    } while (waiting.size() < before);
    ordered.insert(ordered.end(), waiting.begin(), waiting.end());
    return ordered;
}

}  // namespace

std::wstring writeMof(const CimClass& definition) {
    std::wstring text = L"\n";
    appendQualifiers(text, definition.qualifiers, L"\n");
    text += L"class " + definition.name;
    if (!definition.superclass.empty()) text += L" : " + definition.superclass;
    text += L"\n{\n";
    const auto isOwn = [&](const auto& member) {
        return equalNoCase(member.declaredIn, definition.name);
    };
    for (const CimProperty& property : definition.properties)
        if (isOwn(property)) appendProperty(text, property);
    for (const CimMethod& method : definition.methods)
        if (isOwn(method)) appendMethod(text, method);
    return text + L"};\n";
}

std::wstring writeMof(const CimInstance& instance) {
    std::wstring text;
    appendInstance(text, instance);
    return text + L";\n";
}

std::wstring writeMof(const Repository& repository) {
    std::wstring text;
    for (const std::wstring& name : repository.namespaces()) {
        text += L"#pragma namespace(" + mofString(L"\\\\.\\" + name) + L")\n";
        for (const CimClassPtr& definition : inReadingOrder(repository.classes(name)))
            text += writeMof(*definition);
        for (const CimInstancePtr& instance : repository.allInstances(name))
            text += writeMof(*instance);
        text += L'\n';
    }
    return text;
}

}  // namespace quista::simulator

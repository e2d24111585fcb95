#include "simulator/driver/instance_values.h"

#include <utility>

namespace quista::simulator {

std::optional<std::uint64_t> numberIn(const CimValue& value) {
    if (const auto* number = value.asUnsigned()) return *number;
    if (const auto* number = value.asSigned()) return static_cast<std::uint64_t>(*number);
    if (const auto* truth = value.asBoolean()) return *truth ? 1u : 0u;
    return std::nullopt;
}

std::optional<std::uint64_t> numberOf(const CimInstance& instance, std::wstring_view property) {
    const CimValue* value = instance.find(property);
    return value != nullptr ? numberIn(*value) : std::nullopt;
}

void setNumber(CimInstance& instance, std::wstring_view property, std::uint64_t number) {
    const CimProperty* declared = instance.definition().findProperty(property);
    if (declared == nullptr || declared->type.isArray) return;
    if (declared->type.base == CimType::boolean) {
        instance.set(property, CimValue::ofBoolean(number != 0));
    } else if (std::optional<CimValue> value = integerOfType(declared->type.base, false, number)) {
        instance.set(property, std::move(*value));
    }
}

std::optional<std::wstring> textOf(const CimInstance& instance, std::wstring_view property) {
    const CimValue* value = instance.find(property);
    if (value == nullptr || value->asText() == nullptr) return std::nullopt;
    return *value->asText();
}

std::optional<CimInstance> objectOf(const CimInstance& instance, std::wstring_view property) {
    const CimValue* value = instance.find(property);
    if (value == nullptr || value->asObject() == nullptr) return std::nullopt;
    return **value->asObject();
}

std::vector<CimInstance> objectsOf(const CimInstance& instance, std::wstring_view property) {
    const CimValue* value = instance.find(property);
    if (value == nullptr || value->asArray() == nullptr) return {};
    std::vector<CimInstance> objects;
    for (const CimValue& element : *value->asArray()) {
        if (const CimInstancePtr* object = element.asObject()) objects.push_back(**object);
    }
    return objects;
}

void setObjects(CimInstance& instance, std::wstring_view property,
                const std::vector<CimInstance>& objects) {
    if (objects.empty()) return;  // none were read either, perhaps because there is no such array
    CimValue::Array elements;
    for (const CimInstance& object : objects) elements.push_back(CimValue::ofObject(object));
    instance.set(property, CimValue::ofArray(std::move(elements)));
}

CimInstancePtr findByName(const Repository& repository, const std::wstring& nameSpace,
                          const wchar_t* className, const std::wstring& instanceName) {
    const ObjectPath path{
        nameSpace, className, false, {{L"InstanceName", CimValue::ofText(instanceName)}}};
    return repository.findInstance(nameSpace, path);
}

}  // namespace quista::simulator

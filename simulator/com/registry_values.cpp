#include "simulator/com/registry_values.h"

#include <utility>

#include "simulator/repository/cim_instance.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

constexpr const wchar_t* kNamespace = L"root\\simulator";
constexpr const wchar_t* kClass = L"Simulator_RegistryValue";
constexpr const wchar_t* kKeyPath = L"KeyPath";
constexpr const wchar_t* kValueName = L"ValueName";
constexpr const wchar_t* kData = L"Data";

CimProperty property(const wchar_t* name, const CimDeclaredType& type) {
    return {name, type, {}, {}, {}};
}

CimProperty keyProperty(const wchar_t* name) {
    CimProperty key = property(name, {CimType::string, false, {}});
    key.qualifiers.put({L"key", CimValue::ofBoolean(true)});
    return key;
}

// A host knows the class from its first value on.
CimClassPtr valueClass(Repository& repository) {
    if (CimClassPtr known = repository.findClass(kNamespace, kClass)) return known;
    CimClass definition;
    definition.name = kClass;
    definition.properties = {keyProperty(kKeyPath), keyProperty(kValueName),
                             property(kData, {CimType::uint8, true, {}})};
    repository.addNamespace(kNamespace);
    repository.putClass(kNamespace, definition);
    return repository.findClass(kNamespace, kClass);
}

bool hasText(const CimInstance& instance, const wchar_t* property, const std::wstring& text) {
    const CimValue* value = instance.find(property);
    return value != nullptr && value->asText() != nullptr && equalNoCase(*value->asText(), text);
}

std::vector<unsigned char> bytesOf(const CimInstance& instance) {
    std::vector<unsigned char> bytes;
    const CimValue* data = instance.find(kData);
    const CimValue::Array* elements = data != nullptr ? data->asArray() : nullptr;
    if (elements == nullptr) return bytes;
    for (const CimValue& element : *elements) {
        const std::uint64_t* number = element.asUnsigned();
        bytes.push_back(number != nullptr ? static_cast<unsigned char>(*number) : '\0');
    }
    return bytes;
}

}  // namespace

std::vector<unsigned char> registryValue(const Repository& repository, const std::wstring& keyPath,
                                         const std::wstring& valueName) {
    for (const CimInstancePtr& instance : repository.instances(kNamespace, kClass)) {
        if (hasText(*instance, kKeyPath, keyPath) && hasText(*instance, kValueName, valueName)) {
            return bytesOf(*instance);
        }
    }
    return {};
}

void setRegistryValue(Repository& repository, const std::wstring& keyPath,
                      const std::wstring& valueName, const std::vector<unsigned char>& bytes) {
    CimValue::Array elements;
    for (const unsigned char byte : bytes) elements.push_back(CimValue::ofUnsigned(byte));
    CimInstance value(valueClass(repository));
    value.set(kKeyPath, CimValue::ofText(keyPath));
    value.set(kValueName, CimValue::ofText(valueName));
    value.set(kData, CimValue::ofArray(std::move(elements)));
    repository.putInstance(kNamespace, value);
}

}  // namespace quista::simulator

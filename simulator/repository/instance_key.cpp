#include "simulator/repository/instance_key.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

constexpr wchar_t kSingletonKey[] = L"@";

using NamedTexts = std::vector<std::pair<std::wstring, std::wstring>>;

/// The value in a form that ignores case and how an integer was written.
std::wstring canonical(const CimValue& value) {
    if (const auto* text = value.asText()) return foldCase(*text);
    if (const auto* number = value.asSigned()) return std::to_wstring(*number);
    if (const auto* number = value.asUnsigned()) return std::to_wstring(*number);
    if (const auto* real = value.asReal()) return std::to_wstring(*real);
    if (const auto* truth = value.asBoolean()) return *truth ? L"true" : L"false";
    return {};
}

/// Lengths keep apart what a separator could not, since values hold any character.
std::wstring joined(NamedTexts parts) {
    std::sort(parts.begin(), parts.end());
    std::wstring key;
    for (const auto& [name, text] : parts)
        key += name + L'=' + std::to_wstring(text.size()) + L':' + text + L',';
    return key;
}

const CimProperty* soleKey(const CimClass& definition) {
    const CimProperty* sole = nullptr;
    for (const CimProperty& property : definition.properties) {
        if (!property.isKey()) continue;
        if (sole) return nullptr;
        sole = &property;
    }
    return sole;
}

}  // namespace

RepositoryStatus keyOf(const CimInstance& instance, std::wstring& key) {
    const CimClass& definition = instance.definition();
    NamedTexts parts;
    for (std::size_t i = 0; i < definition.properties.size(); ++i) {
        const CimProperty& property = definition.properties[i];
        if (!property.isKey()) continue;
        if (instance.values()[i].isNull()) return RepositoryStatus::nullKey;
        parts.emplace_back(foldCase(property.name), canonical(instance.values()[i]));
    }
    if (parts.empty() && !definition.isSingleton()) return RepositoryStatus::noKey;
    key = parts.empty() ? kSingletonKey : joined(std::move(parts));
    return RepositoryStatus::ok;
}

std::optional<std::wstring> keyOf(const ObjectPath& path, const CimClass& definition) {
    if (path.isSingleton) return kSingletonKey;
    if (path.keys.empty()) return std::nullopt;
    NamedTexts parts;
    for (const ObjectPath::Key& named : path.keys) {
        std::wstring name = named.name;
        if (name.empty()) {
            const CimProperty* sole = soleKey(definition);
            if (!sole) return std::nullopt;
            name = sole->name;
        }
        parts.emplace_back(foldCase(name), canonical(named.value));
    }
    return joined(std::move(parts));
}

}  // namespace quista::simulator

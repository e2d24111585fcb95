#include "tests/support/mof_object.h"

#include <algorithm>

namespace quista::test {

namespace {

std::wstring quoted(const std::wstring& text) {
    std::wstring result = L"\"";
    for (const wchar_t character : text) {
        if (character == L'"' || character == L'\\') result += L'\\';
        result += character;
    }
    return result + L"\"";
}

/// "{a, b, c}" of the elements' texts.
template <typename Values, typename ToText>
std::wstring list(const Values& values, ToText toText) {
    std::wstring result = L"{";
    for (const auto& value : values) {
        if (result.size() > 1) result += L", ";
        result += toText(value);
    }
    return result + L"}";
}

}  // namespace

MofObject& MofObject::raw(const std::wstring& property, const std::wstring& value) {
    const auto found = std::find_if(properties_.begin(), properties_.end(),
                                    [&](const auto& entry) { return entry.first == property; });
    if (found != properties_.end()) {
        found->second = value;
    } else {
        properties_.emplace_back(property, value);
    }
    return *this;
}

MofObject& MofObject::unset(const std::wstring& property) {
    std::erase_if(properties_, [&](const auto& entry) { return entry.first == property; });
    return *this;
}

MofObject& MofObject::text(const std::wstring& property, const std::wstring& value) {
    return raw(property, quoted(value));
}

MofObject& MofObject::number(const std::wstring& property, std::int64_t value) {
    return raw(property, std::to_wstring(value));
}

MofObject& MofObject::unsignedNumber(const std::wstring& property, std::uint64_t value) {
    return raw(property, std::to_wstring(value));
}

MofObject& MofObject::boolean(const std::wstring& property, bool value) {
    return raw(property, value ? L"TRUE" : L"FALSE");
}

MofObject& MofObject::null(const std::wstring& property) {
    return raw(property, L"NULL");
}

MofObject& MofObject::texts(const std::wstring& property, const std::vector<std::wstring>& values) {
    return raw(property, list(values, quoted));
}

MofObject& MofObject::numbers(const std::wstring& property,
                              const std::vector<std::int64_t>& values) {
    return raw(property, list(values, [](std::int64_t value) { return std::to_wstring(value); }));
}

MofObject& MofObject::object(const std::wstring& property, const MofObject& value) {
    return raw(property, value.toMof());
}

MofObject& MofObject::objects(const std::wstring& property, const std::vector<MofObject>& values) {
    return raw(property, list(values, [](const MofObject& value) { return value.toMof(); }));
}

std::wstring MofObject::toMof() const {
    std::wstring result = L"instance of " + className_ + L" {\n";
    for (const auto& [property, value] : properties_) {
        result += L"    " + property + L" = " + value + L";\n";
    }
    return result + L"}";
}

}  // namespace quista::test

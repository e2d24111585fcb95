#include "simulator/generator/instance_text.h"

#include <algorithm>

#include "simulator/mof/mof_text.h"

namespace quista::simulator {
namespace {

std::wstring indented(std::wstring_view text) {
    std::wstring result;
    bool atLineStart = true;
    for (const wchar_t character : text) {
        if (atLineStart) result += L"    ";
        result += character;
        atLineStart = character == L'\n';
    }
    return result;
}

}  // namespace

std::wstring instanceOf(std::wstring_view className, const std::vector<MofProperty>& properties) {
    std::wstring body;
    for (const MofProperty& property : properties) {
        body.append(property.name).append(L" = ").append(property.value).append(L";\n");
    }
    return L"instance of " + std::wstring(className) + L"\n{\n" + indented(body) + L"}";
}

std::wstring namedInstance(std::wstring_view className, std::wstring_view instanceName,
                           const std::vector<MofProperty>& properties) {
    std::vector<MofProperty> all = {{L"InstanceName", mofString(instanceName)},
                                    {L"Active", booleanText(true)}};
    all.insert(all.end(), properties.begin(), properties.end());
    return instanceOf(className, all) + L";\n\n";
}

std::wstring arrayOf(const std::vector<std::wstring>& elements) {
    std::wstring body;
    for (const std::wstring& element : elements) {
        if (!body.empty()) body += L",\n";
        body += element;
    }
    return body.empty() ? L"{}" : L"\n{\n" + indented(body) + L"\n}";
}

std::wstring numberText(std::uint64_t number) {
    return std::to_wstring(number);
}

std::wstring booleanText(bool truth) {
    return truth ? L"TRUE" : L"FALSE";
}

std::wstring bytesText(std::span<const std::uint8_t> bytes) {
    std::wstring list;
    for (const std::uint8_t byte : bytes) {
        list += list.empty() ? L"{ 0x" : L", 0x";
        list += hexDigits(byte, 2);
    }
    return list.empty() ? L"{}" : list + L" }";
}

std::wstring hexDigits(std::uint64_t number, unsigned width) {
    std::wstring digits;
    while (number != 0 || digits.size() < width) {
        digits += L"0123456789abcdef"[number % 16];
        number /= 16;
    }
    std::reverse(digits.begin(), digits.end());
    return digits;
}

}  // namespace quista::simulator

#include "simulator/driver/method_results.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "simulator/driver/driver_status.h"
#include "simulator/driver/instance_values.h"
#include "simulator/repository/text_case.h"
#include "simulator/repository/text_scan.h"

namespace quista::simulator {
namespace {

constexpr wchar_t kResultNamespace[] = L"root\\simulator";
constexpr wchar_t kResultClass[] = L"Simulator_MethodResult";

std::optional<unsigned> hexDigit(wchar_t character) {
    if (isDigit(character)) return static_cast<unsigned>(character - L'0');
    const wchar_t lower = static_cast<wchar_t>(character | 0x20);
    if (lower < L'a' || lower > L'f') return std::nullopt;
    return static_cast<unsigned>(lower - L'a') + 10;
}

std::optional<ScannedInteger> scanInteger(std::wstring_view text) {
    if (!text.starts_with(L"0x") && !text.starts_with(L"0X")) return scanDecimal(text);
    text.remove_prefix(2);
    ScannedInteger integer;
    for (const wchar_t character : text) {
        const std::optional<unsigned> digit = hexDigit(character);
        if (!digit || !appendDigit(integer.magnitude, *digit, 16)) return std::nullopt;
    }
    return text.empty() ? std::nullopt : std::optional(integer);
}

std::optional<CimValue> valueOfType(const CimDeclaredType& type, const std::wstring& text) {
    if (type.isArray) return std::nullopt;
    if (isText(type.base)) return CimValue::ofText(text);
    if (type.base == CimType::boolean) {
        if (equalNoCase(text, L"TRUE")) return CimValue::ofBoolean(true);
        if (equalNoCase(text, L"FALSE")) return CimValue::ofBoolean(false);
        return std::nullopt;
    }
    const std::optional<ScannedInteger> integer = scanInteger(text);
    if (!integer) return std::nullopt;
    return integerOfType(type.base, integer->negative, integer->magnitude);
}

bool concerns(const CimInstance& result, const MethodCall& call) {
    return call.definition.isA(textOf(result, L"ClassName").value_or(L"")) &&
           equalNoCase(textOf(result, L"MethodName").value_or(L""), call.method.name);
}

MethodResult readResult(const CimInstance& result, const CimMethod& method) {
    MethodResult read{textOf(result, L"OutParameter").value_or(L""), std::nullopt};
    const CimClassPtr signature = outSignature(method);
    const CimProperty* parameter =
        signature != nullptr ? signature->findProperty(read.outParameter) : nullptr;
    const std::optional<std::wstring> text = textOf(result, L"Value");
    if (parameter != nullptr && text) read.value = valueOfType(parameter->type, *text);
    return read;
}

}  // namespace

std::vector<MethodResult> hostResultsFor(const MethodCall& call) {
    std::vector<MethodResult> results;
    for (const CimInstancePtr& each : call.repository.instances(kResultNamespace, kResultClass)) {
        if (concerns(*each, call)) results.push_back(readResult(*each, call.method));
    }
    return results;
}

bool holdRefusal(const std::vector<MethodResult>& results) {
    return std::ranges::any_of(results, [](const MethodResult& result) {
        const bool isStatus = equalNoCase(result.outParameter, L"ReturnCode") ||
                              equalNoCase(result.outParameter, L"Status");
        return isStatus && result.value && isRefusal(numberIn(*result.value).value_or(0));
    });
}

}  // namespace quista::simulator

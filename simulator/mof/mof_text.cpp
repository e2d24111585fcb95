#include "simulator/mof/mof_text.h"

#include <array>
#include <charconv>

#include "simulator/repository/text_scan.h"

namespace quista::simulator {
namespace {

std::wstring hexEscape(wchar_t character) {
    constexpr wchar_t kDigits[] = L"0123456789abcdef";
    const auto code = static_cast<unsigned>(character);
    // Always four digits: a shorter escape would swallow hexadecimal digits that follow it.
    return {L'\\',
            L'x',
            kDigits[(code >> 12) & 15],
            kDigits[(code >> 8) & 15],
            kDigits[(code >> 4) & 15],
            kDigits[code & 15]};
}

bool isHighSurrogate(wchar_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(wchar_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

bool isControl(wchar_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0xFEFF;
}

std::wstring escaped(wchar_t character) {
    switch (character) {
        case L'\\':
            return L"\\\\";
        case L'"':
            return L"\\\"";
        case L'\n':
            return L"\\n";
        case L'\t':
            return L"\\t";
        case L'\r':
            return L"\\r";
        default:
            break;
    }
    return isControl(character) ? hexEscape(character) : std::wstring(1, character);
}

/// The shortest text that reads back as the number; MOF wants a point in it.
std::wstring realText(double number) {
    std::array<char, 64> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    std::wstring text(buffer.data(), end);
    if (text.find(L'.') != std::wstring::npos) return text;
    const std::size_t exponent = text.find(L'e');
    return text.insert(exponent == std::wstring::npos ? text.size() : exponent, L".0");
}

std::wstring characterText(std::uint64_t code) {
    const auto character = static_cast<wchar_t>(code);
    if (character == L'\'') return L"'\\''";
    if (character == L'"') return L"'\"'";
    const bool isSurrogate = isHighSurrogate(character) || isLowSurrogate(character);
    return L"'" + (isSurrogate ? hexEscape(character) : escaped(character)) + L"'";
}

bool isQuotedInteger(CimType type) {
    return type == CimType::sint64 || type == CimType::uint64;
}

}  // namespace

std::wstring mofString(std::wstring_view text) {
    std::wstring quoted = L"\"";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t unit = text[i];
        if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            quoted += unit;
            quoted += text[++i];
        } else if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
            quoted += hexEscape(unit);
        } else {
            quoted += escaped(unit);
        }
    }
    return quoted + L'"';
}

std::wstring mofScalar(CimType type, const CimValue& value) {
    if (const auto* text = value.asText()) return mofString(*text);
    if (const auto* truth = value.asBoolean()) return *truth ? L"TRUE" : L"FALSE";
    if (const auto* real = value.asReal()) return realText(*real);
    if (type == CimType::char16) return characterText(*value.asUnsigned());
    const std::wstring digits = value.asSigned() ? std::to_wstring(*value.asSigned())
                                                 : std::to_wstring(*value.asUnsigned());
    return isQuotedInteger(type) ? L'"' + digits + L'"' : digits;
}

}  // namespace quista::simulator

#include "simulator/wql/wql_lexer.h"

#include <optional>

namespace quista::simulator {
namespace {

constexpr std::wstring_view kSpaces = L" \t\r\n\f\v";
constexpr std::wstring_view kDigits = L"0123456789";
/// Longer marks first, so that `<=` is not taken for `<`.
constexpr std::wstring_view kMarks[] = {L"<>", L"!=", L"<=", L">=", L"=", L"<",
                                        L">",  L"*",  L",",  L"(",  L")"};

WqlToken tokenOf(WqlTokenKind kind, std::wstring_view text = {}) {
    WqlToken token;
    token.kind = kind;
    token.text = text;
    return token;
}

}  // namespace

WqlToken WqlLexer::next() {
    const std::size_t start = rest_.find_first_not_of(kSpaces);
    if (start == std::wstring_view::npos) return {};
    rest_.remove_prefix(start);
    const wchar_t first = rest_.front();
    if (isNameStart(first)) return readName();
    if (first == L'"' || first == L'\'') return readString();
    if (isDigit(first) || first == L'-' || first == L'+') return readInteger();
    return readMark();
}

WqlToken WqlLexer::readName() {
    std::size_t length = 1;
    while (length < rest_.size() && isNamePart(rest_[length])) ++length;
    const WqlToken token = tokenOf(WqlTokenKind::name, rest_.substr(0, length));
    rest_.remove_prefix(length);
    return token;
}

/// A backslash makes the next character stand for itself.
WqlToken WqlLexer::readString() {
    WqlToken token = tokenOf(WqlTokenKind::string);
    const wchar_t quote = rest_.front();
    for (std::size_t i = 1; i < rest_.size(); ++i) {
        if (rest_[i] == quote) {
            rest_.remove_prefix(i + 1);
            return token;
        }
        if (rest_[i] == L'\\' && ++i == rest_.size()) break;
        token.text += rest_[i];
    }
    return tokenOf(WqlTokenKind::invalid);
}

WqlToken WqlLexer::readInteger() {
    const std::size_t end = rest_.find_first_not_of(kDigits, 1);
    const std::wstring_view digits = rest_.substr(0, end);
    WqlToken token = tokenOf(WqlTokenKind::integer);
    const std::optional<ScannedInteger> integer = scanDecimal(digits);
    if (!integer) return tokenOf(WqlTokenKind::invalid);
    token.integer = *integer;
    rest_.remove_prefix(digits.size());
    // 12abc is neither a number nor a name.
    if (!rest_.empty() && isNameStart(rest_.front())) return tokenOf(WqlTokenKind::invalid);
    return token;
}

WqlToken WqlLexer::readMark() {
    for (const std::wstring_view mark : kMarks) {
        if (!rest_.starts_with(mark)) continue;
        rest_.remove_prefix(mark.size());
        return tokenOf(WqlTokenKind::mark, mark);
    }
    return tokenOf(WqlTokenKind::invalid);
}

}  // namespace quista::simulator

#include "simulator/mof/mof_lexer.h"

#include <charconv>

#include "simulator/repository/text_scan.h"

namespace quista::simulator {
namespace {

bool isSpace(wchar_t character) {
    return character == L' ' || character == L'\t' || character == L'\r' || character == L'\n' ||
           character == L'\f' || character == L'\v' || character == L'\xFEFF';
}

/// The digit's value, or a number no base reaches.
unsigned digitValue(wchar_t character) {
    if (isDigit(character)) return static_cast<unsigned>(character - L'0');
    if (character >= L'a' && character <= L'f') return static_cast<unsigned>(character - L'a' + 10);
    if (character >= L'A' && character <= L'F') return static_cast<unsigned>(character - L'A' + 10);
    return 99;
}

bool isHexDigit(wchar_t character) {
    return digitValue(character) < 16;
}

std::wstring hexadecimal(wchar_t character) {
    constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    const auto code = static_cast<unsigned>(character);
    return {kDigits[(code >> 12) & 15], kDigits[(code >> 8) & 15], kDigits[(code >> 4) & 15],
            kDigits[code & 15]};
}

}  // namespace

std::wstring describe(const MofToken& token) {
    switch (token.kind) {
        case MofTokenKind::name:
            return token.text;
        case MofTokenKind::alias:
            return L"$" + token.text;
        case MofTokenKind::integer:
        case MofTokenKind::real:
            return L"a number";
        case MofTokenKind::string:
            return L"a string";
        case MofTokenKind::character:
            return L"a character";
        case MofTokenKind::punctuation:
            return L"'" + token.text + L"'";
        case MofTokenKind::end:
            break;
    }
    return L"the end of the text";
}

void MofLexer::fail(MofPosition position, std::wstring reason) const {
    failAt(file_, position, std::move(reason));
}

wchar_t MofLexer::peek(std::size_t offset) const {
    return offset < rest_.size() ? rest_[offset] : L'\0';
}

wchar_t MofLexer::take() {
    const wchar_t character = rest_.front();
    rest_.remove_prefix(1);
    ++position_.column;
    if (character == L'\n') position_ = {position_.line + 1, 1};
    return character;
}

MofToken MofLexer::next() {
    skipSpaceAndComments();
    MofToken token;
    token.position = position_;
    if (rest_.empty()) return token;
    const wchar_t first = peek();
    const bool isSign = first == L'-' || first == L'+';
    const wchar_t second = isSign ? peek(1) : first;
    if (isNameStart(first)) {
        token.kind = MofTokenKind::name;
        readName(token);
    } else if (first == L'$' && isNameStart(peek(1))) {
        take();
        token.kind = MofTokenKind::alias;
        readName(token);
    } else if (isDigit(second) || (second == L'.' && isDigit(peek(isSign ? 2 : 1)))) {
        readNumber(token);
    } else if (first == L'"') {
        readString(token);
    } else if (first == L'\'') {
        readCharacter(token);
    } else if (std::wstring_view(L"{}[]();:,=#").find(first) != std::wstring_view::npos) {
        token.kind = MofTokenKind::punctuation;
        token.text = take();
    } else if (first > L' ' && first < 0x7F) {
        fail(position_, std::wstring(L"unexpected character '") + first + L"'");
    } else {
        fail(position_, L"unexpected character U+" + hexadecimal(first));
    }
    return token;
}

void MofLexer::skipSpaceAndComments() {
    while (!rest_.empty()) {
        if (isSpace(peek())) {
            take();
        } else if (peek() == L'/' && peek(1) == L'/') {
            while (!rest_.empty() && peek() != L'\n') take();
        } else if (peek() == L'/' && peek(1) == L'*') {
            skipBlockComment();
        } else {
            return;
        }
    }
}

void MofLexer::skipBlockComment() {
    const MofPosition start = position_;
    take();
    take();
    while (rest_.size() >= 2) {
        if (peek() == L'*' && peek(1) == L'/') {
            take();
            take();
            return;
        }
        take();
    }
    fail(start, L"the comment is not terminated");
}

void MofLexer::readName(MofToken& token) {
    while (!rest_.empty() && isNamePart(peek())) token.text += take();
}

void MofLexer::readString(MofToken& token) {
    token.kind = MofTokenKind::string;
    take();
    while (!rest_.empty() && peek() != L'\n' && peek() != L'\r') {
        if (peek() == L'"') {
            take();
            return;
        }
        token.text += peek() == L'\\' ? takeEscaped() : take();
    }
    fail(token.position, L"the string is not terminated");
}

void MofLexer::readCharacter(MofToken& token) {
    token.kind = MofTokenKind::character;
    take();
    if (rest_.empty() || peek() == L'\n' || peek() == L'\r')
        fail(token.position, L"the character is not terminated");
    if (peek() == L'\'') fail(token.position, L"the character is empty");
    token.magnitude = static_cast<std::uint64_t>(peek() == L'\\' ? takeEscaped() : take());
    if (peek() != L'\'') fail(token.position, L"the character is not terminated");
    take();
}

wchar_t MofLexer::takeEscaped() {
    const MofPosition start = position_;
    take();
    if (rest_.empty()) fail(start, L"the string is not terminated");
    switch (const wchar_t character = take()) {
        case L'\\':
        case L'"':
        case L'\'':
            return character;
        case L'n':
            return L'\n';
        case L't':
            return L'\t';
        case L'r':
            return L'\r';
        case L'b':
            return L'\b';
        case L'f':
            return L'\f';
        case L'x':
        case L'X':
            return takeHexEscape(start);
        default:
            break;
    }
    fail(start, L"unknown escape sequence in a string");
}

wchar_t MofLexer::takeHexEscape(MofPosition start) {
    constexpr int kMaxDigits = 4;
    if (!isHexDigit(peek())) fail(start, L"\\x must be followed by hexadecimal digits");
    unsigned code = 0;
    for (int i = 0; i < kMaxDigits && isHexDigit(peek()); ++i)
        code = code * 16 + digitValue(take());
    return static_cast<wchar_t>(code);
}

/// Decimal, 0x hexadecimal, octal with a leading 0, binary with a trailing b, or real.
void MofLexer::readNumber(MofToken& token) {
    token.kind = MofTokenKind::integer;
    if (peek() == L'-' || peek() == L'+') token.negative = take() == L'-';
    std::wstring digits;
    if (peek() == L'0' && (peek(1) == L'x' || peek(1) == L'X')) {
        take();
        take();
        while (isHexDigit(peek())) digits += take();
        readDigits(token, digits, 16);
    } else {
        while (isDigit(peek())) digits += take();
        if (peek() == L'.') {
            readReal(token, digits);
        } else if (peek() == L'b' || peek() == L'B') {
            take();
            readDigits(token, digits, 2);
        } else {
            readDigits(token, digits, digits.size() > 1 && digits.front() == L'0' ? 8 : 10);
        }
    }
    if (isNamePart(peek()) || peek() == L'.') fail(token.position, L"malformed number");
}

void MofLexer::readReal(MofToken& token, const std::wstring& digits) {
    token.kind = MofTokenKind::real;
    std::string literal = token.negative ? "-" : "";
    for (const wchar_t digit : digits) literal += static_cast<char>(digit);
    literal += static_cast<char>(take());
    if (!isDigit(peek())) fail(token.position, L"malformed number");
    while (isDigit(peek())) literal += static_cast<char>(take());
    if (peek() == L'e' || peek() == L'E') {
        literal += static_cast<char>(take());
        if (peek() == L'-' || peek() == L'+') literal += static_cast<char>(take());
        if (!isDigit(peek())) fail(token.position, L"malformed number");
        while (isDigit(peek())) literal += static_cast<char>(take());
    }
    const auto [end, error] =
        std::from_chars(literal.data(), literal.data() + literal.size(), token.real);
    if (error == std::errc::result_out_of_range)
        fail(token.position, L"the number is out of range");
    if (error != std::errc() || end != literal.data() + literal.size())
        fail(token.position, L"malformed number");
}

void MofLexer::readDigits(MofToken& token, std::wstring_view digits, unsigned base) const {
    if (digits.empty()) fail(token.position, L"malformed number");
    for (const wchar_t character : digits) {
        const unsigned digit = digitValue(character);
        if (digit >= base) fail(token.position, L"malformed number");
        if (!appendDigit(token.magnitude, digit, base))
            fail(token.position, L"the number needs more than 64 bits");
    }
}

}  // namespace quista::simulator

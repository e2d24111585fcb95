#include "simulator/mof/mof_encoding.h"

#include <cstdint>

#include "simulator/mof/mof_failure.h"
#include "simulator/repository/text_scan.h"

namespace quista::simulator {
namespace {

unsigned byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

void append(std::wstring& text, char32_t codePoint) {
    if (sizeof(wchar_t) > 2 || codePoint < 0x10000) {
        text += static_cast<wchar_t>(codePoint);
        return;
    }
    text += static_cast<wchar_t>(0xD800 + ((codePoint - 0x10000) >> 10));
    text += static_cast<wchar_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
}

/// Where the next character after the text stands.
MofPosition endOf(const std::wstring& text) {
    MofPosition position;
    for (const wchar_t character : text) {
        ++position.column;
        if (character == L'\n') position = {position.line + 1, 1};
    }
    return position;
}

/// Number of bytes of the UTF-8 sequence with that first byte; 0 when none begins so.
std::size_t sequenceLength(unsigned first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return 2;
    if (first >= 0xE0 && first < 0xF0) return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

bool isValidCodePoint(char32_t codePoint, std::size_t length) {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = isHighSurrogate(codePoint) || isLowSurrogate(codePoint);
    return codePoint >= kSmallest[length] && codePoint < 0x110000 && !isSurrogate;
}

/// Takes one character off the bytes; false when they are no UTF-8.
bool takeUtf8(std::string_view& bytes, char32_t& codePoint) {
    const unsigned first = byteAt(bytes, 0);
    const std::size_t length = sequenceLength(first);
    if (length == 0 || length > bytes.size()) return false;
    codePoint = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(bytes, i) & 0xC0) != 0x80) return false;
        codePoint = (codePoint << 6) | (byteAt(bytes, i) & 0x3F);
    }
    bytes.remove_prefix(length);
    return isValidCodePoint(codePoint, length);
}

std::wstring decodeUtf8(std::string_view bytes, const std::wstring& file) {
    std::wstring text;
    while (!bytes.empty()) {
        char32_t codePoint = 0;
        if (!takeUtf8(bytes, codePoint)) failAt(file, endOf(text), L"the file is not valid UTF-8");
        append(text, codePoint);
    }
    return text;
}

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

std::wstring decodeUtf16(std::string_view bytes, const std::wstring& file) {
    std::wstring text;
    const auto unitAt = [&](std::size_t index) -> char32_t {
        return byteAt(bytes, index) | (byteAt(bytes, index + 1) << 8);
    };
    std::size_t i = 0;
    while (i + 1 < bytes.size()) {
        char32_t codePoint = unitAt(i);
        i += 2;
        if (isHighSurrogate(codePoint) && i + 1 < bytes.size() && isLowSurrogate(unitAt(i))) {
            codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (unitAt(i) - 0xDC00);
            i += 2;
        }
        append(text, codePoint);
    }
    if (i != bytes.size()) failAt(file, endOf(text), L"the file ends within a UTF-16 character");
    return text;
}

}  // namespace

std::wstring decodeMof(std::string_view bytes, const std::wstring& file) {
    using namespace std::string_view_literals;
    if (bytes.starts_with("\xFF\xFE"sv)) return decodeUtf16(bytes.substr(2), file);
    if (bytes.starts_with("\xEF\xBB\xBF"sv)) bytes.remove_prefix(3);
    return decodeUtf8(bytes, file);
}

}  // namespace quista::simulator

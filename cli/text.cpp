#include "cli/text.h"

#include <windows.h>

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace quista::cli {
namespace {

struct CodePointRange {
    char32_t first;
    char32_t last;
};

// Blocks of combining marks and of characters without a width.
constexpr CodePointRange kZeroWidth[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F},
    {0x202A, 0x202E}, {0x2060, 0x2064}, {0x20D0, 0x20F0}, {0x3099, 0x309A}, {0xFE00, 0xFE0F},
    {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF},
};

// Blocks that terminals draw two columns wide.
constexpr CodePointRange kWide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},   {0x3400, 0x4DBF},
    {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xA960, 0xA97F},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

bool isIn(char32_t codePoint, const CodePointRange* first, const CodePointRange* last) {
    return std::any_of(first, last, [codePoint](const CodePointRange& range) {
        return codePoint >= range.first && codePoint <= range.last;
    });
}

std::size_t widthOf(char32_t codePoint) {
    if (isIn(codePoint, std::begin(kZeroWidth), std::end(kZeroWidth))) return 0;
    return isIn(codePoint, std::begin(kWide), std::end(kWide)) ? 2 : 1;
}

unsigned byteAt(std::string_view text, std::size_t position) {
    return static_cast<unsigned char>(text[position]);
}

std::size_t sequenceLength(unsigned leadByte) {
    if (leadByte >= 0xF0) return 4;
    if (leadByte >= 0xE0) return 3;
    return leadByte >= 0xC0 ? 2 : 1;
}

// Takes the next character off valid UTF-8; a cut sequence at the end gives what is there.
char32_t nextCodePoint(std::string_view text, std::size_t& position) {
    const unsigned lead = byteAt(text, position);
    const std::size_t length = std::min(sequenceLength(lead), text.size() - position);
    char32_t codePoint = length == 1 ? lead : lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        codePoint = (codePoint << 6) | (byteAt(text, position + i) & 0x3Fu);
    }
    position += length;
    return codePoint;
}

// Bytes of the text that fit into `width` columns, at least one character.
std::size_t bytesThatFit(std::string_view text, std::size_t width) {
    std::size_t position = 0;
    nextCodePoint(text, position);
    std::size_t used = displayWidth(text.substr(0, position));
    while (position < text.size()) {
        std::size_t next = position;
        used += widthOf(nextCodePoint(text, next));
        if (used > width) break;
        position = next;
    }
    return position;
}

}  // namespace

std::string toUtf8(std::wstring_view text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), size, nullptr, nullptr);
    return result;
}

std::wstring toWide(std::string_view text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), size);
    return result;
}

std::string fromSystemCodePage(std::string_view bytes) {
    if (bytes.empty()) return {};
    const int length = static_cast<int>(bytes.size());
    const int size = MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, wide.data(), size);
    return toUtf8(wide);
}

std::string printable(std::string_view text) {
    std::string result;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        const char32_t codePoint = nextCodePoint(text, position);
        const bool isControl = codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
        if (isControl) {
            result += fmt::format("\\x{:02x}", static_cast<unsigned>(codePoint));
        } else {
            result += text.substr(start, position - start);
        }
    }
    return result;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t position = 0; position < text.size();) {
        width += widthOf(nextCodePoint(text, position));
    }
    return width;
}

std::vector<std::string> wrap(std::string_view text, std::size_t width) {
    std::vector<std::string> lines;
    while (displayWidth(text) > width) {
        std::size_t cut = bytesThatFit(text, width);
        // A blank just behind the cut counts, so that a word that fits exactly stays whole.
        const std::size_t blank = text.rfind(' ', cut);
        const bool atBlank = blank != std::string_view::npos && blank != 0;
        if (atBlank) cut = blank;
        lines.emplace_back(text.substr(0, cut));
        text.remove_prefix(atBlank ? cut + 1 : cut);
    }
    if (!text.empty() || lines.empty()) lines.emplace_back(text);
    return lines;
}

bool equalIgnoringCase(std::string_view left, std::string_view right) {
    const std::wstring leftWide = toWide(left);
    const std::wstring rightWide = toWide(right);
    return CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, leftWide.data(),
                          static_cast<int>(leftWide.size()), rightWide.data(),
                          static_cast<int>(rightWide.size())) == CSTR_EQUAL;
}

}  // namespace quista::cli

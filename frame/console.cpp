#include "frame/console.h"

#include <cstdarg>
#include <cstdio>
#include <cwchar>

namespace quista {

unsigned char gConsoleTrace = 0;

namespace {

// A narrow text of `length` characters is at most this many bytes in any code page, UTF-8 included.
constexpr std::size_t kMaxBytesPerCharacter = 3;

std::wstring formatList(const wchar_t* format, va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    const int length = _vscwprintf(format, measured);
    va_end(measured);
    if (length < 0) return format;

    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    _vsnwprintf(text.data(), text.size(), format, arguments);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

}  // namespace

std::wstring formatText(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::wstring text = formatList(format, arguments);
    va_end(arguments);
    return text;
}

std::string toAnsi(const std::wstring& text) {
    if (text.empty()) return {};
    std::string bytes(text.size() * kMaxBytesPerCharacter, '\0');
    // UTF-8 has every character, and refuses flags and a substitute.
    const bool isUtf8 = GetACP() == CP_UTF8;
    const int length = WideCharToMultiByte(
        CP_ACP, isUtf8 ? 0 : WC_NO_BEST_FIT_CHARS, text.data(), static_cast<int>(text.size()),
        bytes.data(), static_cast<int>(bytes.size()), isUtf8 ? nullptr : "?", nullptr);
    bytes.resize(static_cast<std::size_t>(length > 0 ? length : 0));
    return bytes;
}

std::wstring fromAnsi(const std::string& text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), size);
    wide.resize(static_cast<std::size_t>(length > 0 ? length : 0));
    return wide;
}

void printLine(const std::wstring& text) {
    const std::string bytes = toAnsi(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

void traceLine(std::wstring_view text) {
    if (gConsoleTrace != 0) printLine(std::wstring(text));
}

}  // namespace quista

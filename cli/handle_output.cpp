#include "cli/handle_output.h"

#include <algorithm>
#include <string>

#include "cli/console_text.h"
#include "cli/text.h"

namespace quista::cli {
namespace {

// Consoles of older systems refuse larger pieces.
constexpr std::size_t kConsolePiece = 8192;

bool isHighSurrogate(wchar_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

}  // namespace

HandleOutput::HandleOutput(DWORD standardHandle) {
    const HANDLE standard = GetStdHandle(standardHandle);
    if (standard == nullptr || standard == INVALID_HANDLE_VALUE) return;
    const HANDLE process = GetCurrentProcess();
    if (!DuplicateHandle(process, standard, process, &handle_, 0, FALSE, DUPLICATE_SAME_ACCESS)) {
        handle_ = nullptr;
        return;
    }
    setUpConsole();
}

HandleOutput::~HandleOutput() {
    if (handle_ != nullptr) CloseHandle(handle_);
}

// The null device counts as a terminal for the C runtime; only a console has a mode.
void HandleOutput::setUpConsole() {
    DWORD mode = 0;
    isConsole_ = GetConsoleMode(handle_, &mode) != FALSE;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    takesColor_ = isConsole_ && GetConsoleScreenBufferInfo(handle_, &info);
    originalAttributes_ = info.wAttributes;
}

bool HandleOutput::write(std::string_view text) {
    if (handle_ == nullptr) return false;
    return isConsole_ ? writeToConsole(text) : writeBytes(text);
}

std::optional<std::size_t> HandleOutput::width() const {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!isConsole_ || !GetConsoleScreenBufferInfo(handle_, &info)) return std::nullopt;
    const int columns = info.srWindow.Right - info.srWindow.Left + 1;
    if (columns <= 0) return std::nullopt;
    return static_cast<std::size_t>(columns);
}

bool HandleOutput::writeToConsole(std::string_view text) {
    for (const ConsolePiece& piece : splitAtSequences(text)) {
        if (!piece.sequence.empty()) {
            SetConsoleTextAttribute(handle_, attributesFor(piece.sequence, originalAttributes_));
        }
        if (!writeWide(toWide(piece.text))) return false;
    }
    return true;
}

bool HandleOutput::writeWide(const std::wstring& wide) {
    std::wstring_view rest = wide;
    while (!rest.empty()) {
        std::size_t length = std::min(rest.size(), kConsolePiece);
        if (length < rest.size() && isHighSurrogate(rest[length - 1])) --length;
        DWORD written = 0;
        if (!WriteConsoleW(handle_, rest.data(), static_cast<DWORD>(length), &written, nullptr) ||
            written == 0) {
            return false;
        }
        rest.remove_prefix(written);
    }
    return true;
}

bool HandleOutput::writeBytes(std::string_view text) {
    while (!text.empty()) {
        const auto length = static_cast<DWORD>(std::min<std::size_t>(text.size(), 1u << 20));
        DWORD written = 0;
        if (!WriteFile(handle_, text.data(), length, &written, nullptr) || written == 0) {
            return false;
        }
        text.remove_prefix(written);
    }
    return true;
}

}  // namespace quista::cli

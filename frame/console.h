// Text that the library prints to standard output or sends to the debugger.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace quista {

/// Non-zero lets diagnostics appear on standard output too. Zero at load, and no export sets it:
/// the lines behind it stay part of the vocabulary.
extern unsigned char gConsoleTrace;

/// Formats as the platform's wide printf family does: "%s", "%ls" and "%ws" take wide text.
std::wstring formatText(const wchar_t* format, ...);

/// The 8-bit form of a text in the system's ANSI code page; a character without one becomes '?'.
std::string toAnsi(const std::wstring& text);

/// The wide form of an 8-bit text in the system's ANSI code page.
std::wstring fromAnsi(const std::string& text);

/// Prints to standard output, whatever gConsoleTrace says.
void printLine(const std::wstring& text);

/// Prints to standard output when gConsoleTrace is on.
void traceLine(std::wstring_view text);

/// Formats as formatText does and prints to standard output, when gConsoleTrace is on; else nothing
/// is made of the arguments.
template <typename... Arguments>
void traceFormatted(const wchar_t* format, Arguments... arguments) {
    if (gConsoleTrace != 0) printLine(formatText(format, arguments...));
}

}  // namespace quista

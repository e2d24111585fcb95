#include "frame/error_log.h"

#include <direct.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

#include "frame/console.h"
#include "frame/guard.h"
#include "frame/log_directory.h"
#include "frame/log_names.h"
#include "quista/frame.h"

namespace quista {

namespace {

constexpr const wchar_t* kLogFileName = L"\\MPIOlog.dat";

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using LogFile = std::unique_ptr<std::FILE, FileCloser>;

std::wstring currentDirectory() {
    // Kept: the string that the runtime allocates is not released.
    const wchar_t* directory = _wgetcwd(nullptr, 0);
    return directory != nullptr ? directory : L".";
}

/// Opens the log for appending in text mode, in the configured directory or the current one.
LogFile openLog() {
    const std::wstring fallback = currentDirectory();
    const std::optional<std::wstring> configured = configuredLogDirectory();
    // One level only, and an existing directory is fine: the result does not matter.
    if (configured) static_cast<void>(_wmkdir(configured->c_str()));
    return LogFile(_wfopen((configured.value_or(fallback) + kLogFileName).c_str(), L"at"));
}

struct SystemTextDeleter {
    void operator()(wchar_t* text) const { LocalFree(text); }
};

std::wstring systemMessage(DWORD code) {
    wchar_t* text = nullptr;
    // Kept: inserts are not ignored, so a text that needs some counts as missing.
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM,
                                        nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                        reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const std::unique_ptr<wchar_t, SystemTextDeleter> owned(text);
    return length != 0 && text != nullptr ? std::wstring(text, length) : std::wstring();
}

/// The system's own text wins over the log's names, so a status code that is also a Windows error
/// number gets Windows' wording.
std::wstring messageOf(DWORD code) {
    std::wstring message = systemMessage(code);
    if (!message.empty()) return message;
    const wchar_t* name = logNameOf(code);
    return name != nullptr ? name : L"";
}

std::wstring timestamp() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return formatText(L"%02d/%02d/%02d %02d:%02d:%02d", now.wMonth, now.wDay, now.wYear, now.wHour,
                      now.wMinute, now.wSecond);
}

void appendEvent(const std::wstring& where, DWORD code) {
    const LogFile file = openLog();
    if (file == nullptr) {
        printLine(L"Unable to open the MPIOlog.dat file\n");
        return;
    }
    std::wstring event = formatText(L"Error %8.8lX in ", code) + where;
    const std::wstring message = messageOf(code);
    if (!message.empty()) event += L": " + message;
    event += L"\n";

    traceLine(event);
    const std::string line = toAnsi(timestamp() + L" " + event);
    std::fwrite(line.data(), 1, line.size(), file.get());
}

}  // namespace

void writeLog(const wchar_t* where, DWORD code) noexcept {
    guardedVoid([&] { appendEvent(where, code); });
}

HRESULT logFailure(HRESULT code, const wchar_t* where) {
    if (code != 0) ReportError(where, static_cast<DWORD>(code));
    return code;
}

}  // namespace quista

void ReportError(const wchar_t* where, unsigned long code) {
    // By design the general error is never logged.
    if (code == DSM_ERROR) return;
    quista::writeLog(where != nullptr ? where : L"", code);
}

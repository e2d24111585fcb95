#include "cli/library_log.h"

#include <windows.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cli/names.h"
#include "cli/text.h"
#include "frame/brand.h"
#include "quista/status.h"

namespace quista::cli {
namespace {

constexpr const wchar_t* kFileName = L"MPIOlog.dat";
constexpr std::size_t kStampLength = sizeof("12/31/2026 23:59:59") - 1;
constexpr std::string_view kCodeMark = " Error ";
constexpr std::string_view kPlaceMark = " in ";
constexpr std::size_t kCodeLength = 8;

std::optional<std::wstring> logDirOf(const wchar_t* key) {
    wchar_t text[MAX_PATH] = {};
    DWORD size = sizeof text;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, key, L"LogDir", RRF_RT_ANY, nullptr, text, &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    return std::wstring(text, std::find(std::begin(text), std::end(text), L'\0'));
}

std::uint64_t sizeOf(const std::wstring& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

std::string bytesFrom(const std::wstring& path, std::uint64_t start) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    file.seekg(static_cast<std::streamoff>(start));
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool isFailure(std::uint32_t code) {
    constexpr std::uint32_t kEndOfEnumeration = 1;
    return code != kEndOfEnumeration && code != DSM_INIT_DONE && code != DSM_WMI_REPAIR_SUCCESS;
}

// A place may hold colons itself, so its message is cut off by what it says.
std::string withoutMessage(std::string_view text, std::uint32_t code) {
    for (const std::string& message : {systemText(code), statusName(code)}) {
        if (message.empty()) continue;
        const std::size_t end = text.rfind(": " + message.substr(0, text.size()));
        if (end != std::string_view::npos) return std::string(text.substr(0, end));
        // A long message is broken into lines, of which this is the first.
        const std::size_t colon = text.rfind(": ");
        if (colon != std::string_view::npos && message.starts_with(text.substr(colon + 2))) {
            return std::string(text.substr(0, colon));
        }
    }
    return std::string(text);
}

// "12/31/2026 23:59:59 Error 80041001 in PLACE: message"
std::optional<FailedStep> stepIn(std::string_view line) {
    if (line.size() < kStampLength) return std::nullopt;
    line.remove_prefix(kStampLength);
    if (!line.starts_with(kCodeMark)) return std::nullopt;
    line.remove_prefix(kCodeMark.size());
    if (line.size() < kCodeLength) return std::nullopt;
    std::uint32_t code = 0;
    const char* end = line.data() + kCodeLength;
    if (std::from_chars(line.data(), end, code, 16).ptr != end) return std::nullopt;
    line.remove_prefix(kCodeLength);
    if (!line.starts_with(kPlaceMark) || !isFailure(code)) return std::nullopt;
    line.remove_prefix(kPlaceMark.size());
    line = line.substr(0, line.find_last_not_of(" \r") + 1);
    return FailedStep{withoutMessage(line, code), code};
}

}  // namespace

LogMark::LogMark() {
    for (const wchar_t* key : {kVelmoraKey, kPelmarkKey}) {
        const auto folder = logDirOf(key);
        if (folder) files_.push_back({*folder + L"\\" + kFileName});
    }
    files_.push_back({kFileName});
    for (File& file : files_) file.size = sizeOf(file.path);
}

std::optional<FailedStep> LogMark::failedStep() const {
    for (const File& file : files_) {
        if (sizeOf(file.path) <= file.size) continue;
        // The library writes its log in the system's code page.
        if (auto step = failedStepIn(fromSystemCodePage(bytesFrom(file.path, file.size)))) {
            return step;
        }
    }
    return std::nullopt;
}

std::optional<FailedStep> failedStepIn(std::string_view lines) {
    while (!lines.empty()) {
        const std::size_t end = lines.find('\n');
        if (auto step = stepIn(lines.substr(0, end))) return step;
        lines.remove_prefix(end == std::string_view::npos ? lines.size() : end + 1);
    }
    return std::nullopt;
}

}  // namespace quista::cli

#include "simulator/mof/mof_file.h"

#include <windows.h>

#include <algorithm>
#include <memory>

namespace quista::simulator {
namespace {

struct HandleCloser {
    void operator()(void* handle) const { CloseHandle(handle); }
};
using File = std::unique_ptr<void, HandleCloser>;

std::wstring failure(const wchar_t* what) {
    return std::wstring(what) + L" (Windows error " + std::to_wstring(GetLastError()) + L")";
}

std::string toUtf8(std::wstring_view text) {
    const int units = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

bool writeAll(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        constexpr std::size_t kChunk = 1 << 20;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kChunk));
        DWORD written = 0;
        if (WriteFile(file, bytes.data(), wanted, &written, nullptr) == 0) return false;
        if (written == 0) return false;
        bytes.remove_prefix(written);
    }
    return FlushFileBuffers(file) != 0;
}

/// Not every file system keeps a protected file from being replaced.
bool isWriteProtected(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

/// Writes the draft and lets it take the file's place.
std::optional<std::wstring> writeAndReplace(File draft, std::string_view bytes,
                                            const std::wstring& draftPath,
                                            const std::wstring& path) {
    if (!writeAll(draft.get(), bytes)) return failure(L"the file cannot be written");
    draft.reset();
    const DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (MoveFileExW(draftPath.c_str(), path.c_str(), flags) != 0) return std::nullopt;
    return failure(L"the file cannot be replaced");
}

}  // namespace

std::optional<std::wstring> writeMofFile(const std::wstring& path, std::wstring_view text) {
    if (isWriteProtected(path)) return L"the file is write-protected";
    const std::wstring draftPath = path + L".saving";
    // Without sharing: of two writers at once one fails.
    const HANDLE draft = CreateFileW(draftPath.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                     FILE_ATTRIBUTE_NORMAL, nullptr);
    if (draft == INVALID_HANDLE_VALUE) return failure(L"no file can be made in its folder");
    std::optional<std::wstring> reason =
        writeAndReplace(File(draft), toUtf8(text), draftPath, path);
    if (reason) DeleteFileW(draftPath.c_str());
    return reason;
}

}  // namespace quista::simulator

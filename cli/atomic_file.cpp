#include "cli/atomic_file.h"

#include <windows.h>

namespace quista::cli {
namespace {

// The bytes are on the disk before the file takes the other one's place.
DWORD writeNew(const std::wstring& filePath, std::string_view bytes) {
    const HANDLE file = CreateFileW(filePath.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError();
    DWORD error = ERROR_SUCCESS;
    DWORD written = 0;
    const auto size = static_cast<DWORD>(bytes.size());
    if (!WriteFile(file, bytes.data(), size, &written, nullptr) || !FlushFileBuffers(file)) {
        error = GetLastError();
    } else if (written != size) {
        error = ERROR_DISK_FULL;
    }
    CloseHandle(file);
    return error;
}

}  // namespace

unsigned long writeFileAtomically(const std::wstring& filePath, std::string_view bytes) {
    const std::wstring newPath = filePath + L"." + std::to_wstring(GetCurrentProcessId()) + L".new";
    DWORD error = writeNew(newPath, bytes);
    if (error == ERROR_SUCCESS &&
        !MoveFileExW(newPath.c_str(), filePath.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        error = GetLastError();
    }
    if (error != ERROR_SUCCESS) DeleteFileW(newPath.c_str());
    return error;
}

}  // namespace quista::cli

#include "cli/work_folder.h"

#include <windows.h>

#include "cli/failure.h"

namespace quista::cli {
namespace {

std::wstring environmentText(const wchar_t* name) {
    std::wstring text(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

std::wstring currentFolder() {
    std::wstring text(GetCurrentDirectoryW(0, nullptr), L'\0');
    text.resize(GetCurrentDirectoryW(static_cast<DWORD>(text.size()), text.data()));
    return text;
}

std::wstring temporaryFolder() {
    wchar_t text[MAX_PATH + 1];
    return {text, GetTempPathW(MAX_PATH + 1, text)};
}

bool enter(const std::wstring& parent) {
    if (parent.empty()) return false;
    const std::wstring folder = parent + L"\\Quista";
    CreateDirectoryW(folder.c_str(), nullptr);
    return SetCurrentDirectoryW(folder.c_str()) != FALSE;
}

}  // namespace

WorkFolder::WorkFolder() : userFolder_(currentFolder()) {
    if (enter(environmentText(L"LOCALAPPDATA")) || enter(temporaryFolder())) return;
    throw Failure(ExitCode::kFailed, DSM_SUCCESS, "no folder for the library's log can be made",
                  "Set LOCALAPPDATA or TEMP to a folder that you can write to.");
}

WorkFolder::~WorkFolder() {
    SetCurrentDirectoryW(userFolder_.c_str());
}

}  // namespace quista::cli

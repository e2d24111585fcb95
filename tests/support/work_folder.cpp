#include "tests/support/work_folder.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace quista::test {

namespace {

std::wstring makeTemporaryFolder() {
    static unsigned made = 0;
    const std::filesystem::path name =
        L"quista-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++made);
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / name;
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder.wstring();
}

}  // namespace

WorkFolder::WorkFolder()
    : path_(makeTemporaryFolder()), previous_(std::filesystem::current_path().wstring()) {
    std::filesystem::current_path(path_);
}

WorkFolder::~WorkFolder() {
    std::error_code error;
    std::filesystem::current_path(previous_, error);
    std::filesystem::remove_all(path_, error);
    if (error) ADD_FAILURE() << "the work folder cannot be deleted: " << error.message();
}

std::optional<std::string> readFile(const std::wstring& filePath) {
    std::ifstream file(std::filesystem::path(filePath), std::ios::binary);
    if (!file) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void writeFile(const std::wstring& filePath, const std::string& bytes) {
    std::ofstream file(std::filesystem::path(filePath), std::ios::binary | std::ios::trunc);
    file << bytes;
    ASSERT_TRUE(file.flush()) << "a file of the test cannot be written";
}

bool fileExists(const std::wstring& filePath) {
    const DWORD attributes = GetFileAttributesW(filePath.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool folderExists(const std::wstring& folderPath) {
    const DWORD attributes = GetFileAttributesW(folderPath.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace quista::test

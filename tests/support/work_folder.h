// A fresh, empty folder as the current directory, for the library's log file.
#pragma once

#include <optional>
#include <string>

namespace quista::test {

/// Makes a temporary folder and enters it; leaves and deletes it at the end of its life.
class WorkFolder {
  public:
    WorkFolder();
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    /// Full path of the folder, without trailing separator.
    const std::wstring& path() const { return path_; }
    /// Full path of a file or folder in it.
    std::wstring path(const std::wstring& name) const { return path_ + L"\\" + name; }

  private:
    std::wstring path_;
    std::wstring previous_;
};

/// The bytes of a file; nothing when it cannot be opened.
std::optional<std::string> readFile(const std::wstring& filePath);
/// Writes a file anew.
void writeFile(const std::wstring& filePath, const std::string& bytes);
bool fileExists(const std::wstring& filePath);
bool folderExists(const std::wstring& folderPath);

}  // namespace quista::test

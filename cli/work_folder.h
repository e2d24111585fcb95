// The folder that the library writes its log to when no LogDir is configured: the current one.
#pragma once

#include <string>

namespace quista::cli {

/// While it lives, the current folder is %LOCALAPPDATA%\Quista (or a Quista folder among the
/// temporary files), so that no log is left in the user's folder.
class WorkFolder {
  public:
    /// Throws Failure when neither folder can be made.
    WorkFolder();
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

  private:
    std::wstring userFolder_;
};

}  // namespace quista::cli

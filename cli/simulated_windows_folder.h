// The Windows folder that belongs to a simulated host, with the driver files of its version report.
#pragma once

#include <string>

namespace quista::cli {

/// While it lives the process's SYSTEMROOT names the simulated Windows folder, in which the library
/// looks for driver files.
class SimulatedWindowsFolder {
  public:
    explicit SimulatedWindowsFolder(const std::wstring& folder);
    ~SimulatedWindowsFolder();
    SimulatedWindowsFolder(const SimulatedWindowsFolder&) = delete;
    SimulatedWindowsFolder& operator=(const SimulatedWindowsFolder&) = delete;

  private:
    std::wstring previous_;
};

}  // namespace quista::cli

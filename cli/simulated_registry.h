// The registry that a simulated host sees, so that no simulated change reaches the machine's.
#pragma once

#include <windows.h>

#include <string>

namespace quista::cli {

/// While it lives the process sees a scratch key as HKEY_LOCAL_MACHINE. It holds an installation
/// directory with the MOF files of the simulator, and the service parameters of the DSM; what is
/// written there is forgotten.
class SimulatedRegistry {
  public:
    /// Throws Failure when the key cannot be made.
    /// @param installDir ends with a path separator
    explicit SimulatedRegistry(const std::wstring& installDir);
    ~SimulatedRegistry();
    SimulatedRegistry(const SimulatedRegistry&) = delete;
    SimulatedRegistry& operator=(const SimulatedRegistry&) = delete;

  private:
    std::wstring path_;
    HKEY root_ = nullptr;
};

}  // namespace quista::cli

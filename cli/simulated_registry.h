// The registry that a simulated host sees, so that no simulated change reaches the machine's.
#pragma once

#include <windows.h>

#include <string>

#include "cli/simulated_host.h"

namespace quista::cli {

/// While it lives the process sees a scratch key as HKEY_LOCAL_MACHINE. It holds an installation
/// directory with the MOF files of the simulator, and the service parameters of the DSM, among them
/// the reservation key that the host keeps.
class SimulatedRegistry {
  public:
    /// Throws Failure when the key cannot be made.
    /// @param installDir ends with a path separator
    SimulatedRegistry(const std::wstring& installDir, const SimulatedHost& host);
    ~SimulatedRegistry();
    SimulatedRegistry(const SimulatedRegistry&) = delete;
    SimulatedRegistry& operator=(const SimulatedRegistry&) = delete;

    /// Hands the reservation key back to the host, where it has changed.
    void keepChanges(SimulatedHost& host) const;

  private:
    std::wstring path_;
    HKEY root_ = nullptr;
};

}  // namespace quista::cli

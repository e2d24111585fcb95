// A simulated host that answers the library in the place of the machine's own WMI.
#pragma once

#include <memory>
#include <string>

#include "simulator/simulator.h"

namespace quista::cli {

class SimulatedHost {
  public:
    /// Loads the simulator's DLL from `folder` and the host into it. Throws UsageError with file,
    /// line, column and reason when the host is malformed or does not exist.
    /// @param host name of a sample, or a MOF file relative to the current folder
    SimulatedHost(const std::wstring& folder, const std::string& host);

  private:
    std::unique_ptr<simulator::Simulator, simulator::DestroySimulatorFunction> simulator_;
};

}  // namespace quista::cli

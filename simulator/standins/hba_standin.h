// The stand-in for the Fibre Channel HBA API library: hbaapi.dll with a host made of plain records.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/standins/call_script.h"

namespace quista::simulator {

/// A Fibre Channel target as Windows addresses it.
struct HbaTarget {
    std::uint32_t bus = 0;
    std::uint32_t target = 0;
};

struct HbaPort {
    std::string osDeviceName{};  ///< from 256 characters on without terminator
    std::array<std::uint8_t, 8> wwn{};
};

struct HbaAdapter {
    std::string name{};  ///< from 256 characters on without terminator
    std::vector<HbaPort> ports{};
    std::vector<HbaTarget> targets{};  ///< the FCP target mapping
};

/// Sets up the stand-in. Adapters have their index plus 1 as their handle.
class HbaStandin {
  public:
    /// Takes the adapters of the simulated host that plays WMI in the process: its classes
    /// Simulator_FcPort and Simulator_FcTarget.
    /// @return false when there is no such host, or one that knows nothing of adapters
    virtual bool readHost() = 0;
    virtual void setAdapters(const std::vector<HbaAdapter>& adapters) = 0;
    virtual void prescribe(const Answer& answer) = 0;
    /// The API's calls so far, such as "HBA_GetAdapterPortAttributes 1 0": function, handle, index.
    virtual std::vector<std::string> calls() const = 0;
    /// Forgets adapters, answers and calls.
    virtual void reset() = 0;

  protected:
    ~HbaStandin() = default;
};

using HbaStandinFunction = HbaStandin* (*)();

}  // namespace quista::simulator

extern "C" quista::simulator::HbaStandin* quistaHbaStandin();

// The stand-in for Windows' iSCSI discovery library: iscsidsc.dll with sessions made of plain
// records.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/standins/call_script.h"

namespace quista::simulator {

struct IscsiSessionId {
    std::uint64_t adapterUnique = 0;
    std::uint64_t adapterSpecific = 0;
};

/// An active target mapping. Texts that fill their field have no terminator.
struct IscsiMapping {
    std::wstring initiatorName{};
    std::wstring osDeviceName{};
    std::uint32_t bus = 0;
    std::uint32_t target = 0;
    IscsiSessionId session{};
};

struct IscsiSession {
    IscsiSessionId id{};
    /// The initiator's address on each connection; nothing stands for a null pointer.
    std::vector<std::optional<std::wstring>> initiatorAddresses{};
    /// Number of connections that the record claims, where it is not that of the addresses.
    std::optional<std::uint32_t> claimedConnections{};
};

/// Sets up the stand-in. A prescribed answer changes what a call returns and reports; the records
/// are delivered all the same, as far as the buffer goes.
class IscsiStandin {
  public:
    /// Takes the sessions of the simulated host that plays WMI in the process: its class
    /// Simulator_IscsiSession.
    /// @return false when there is no such host, or one that knows nothing of adapters
    virtual bool readHost() = 0;
    virtual void setMappings(const std::vector<IscsiMapping>& mappings) = 0;
    virtual void setSessions(const std::vector<IscsiSession>& sessions) = 0;
    virtual void prescribe(const Answer& answer) = 0;
    /// The calls so far, such as "GetIScsiSessionListW size 128 count 2": the function and the
    /// values that came in; "sizing" stands for a call without a buffer.
    virtual std::vector<std::string> calls() const = 0;
    /// Forgets mappings, sessions, answers and calls.
    virtual void reset() = 0;

  protected:
    ~IscsiStandin() = default;
};

using IscsiStandinFunction = IscsiStandin* (*)();

}  // namespace quista::simulator

extern "C" quista::simulator::IscsiStandin* quistaIscsiStandin();

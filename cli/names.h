// Names of the numbers that the library and the driver use.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quista::cli {

struct NamedCode {
    std::uint32_t code;
    const char* name;
};

/// The library's status codes without DSM_SUCCESS, by number.
std::span<const NamedCode> statusCodes();
/// WMI's published result codes.
std::span<const NamedCode> wmiCodes();

/// MPIO's load-balance policies, by number.
std::span<const NamedCode> policyNames();

/// The name of a code in a table, empty when it has none.
std::string_view nameIn(std::span<const NamedCode> codes, std::uint32_t code);

/// Name of a status that a call returned: the library's, else WMI's, else the code in hexadecimal.
std::string statusName(std::uint32_t code);
/// The library's text of a status; empty when it has none.
std::string statusText(std::uint32_t code);
/// The system's text of a Win32 error or HRESULT, on one line; empty when it has none.
std::string systemText(std::uint32_t code);

/// Names of the numbers in LUN and path records: MPIO's for the policies, else the driver's own.
/// "unknown" for a number that has none.
std::string_view policyName(std::uint32_t policy);
std::string_view pathStateName(std::uint32_t state);
std::string_view aluaSupportName(std::uint32_t support);
std::string_view targetPortGroupStateName(std::uint32_t state);
std::string_view lunStateName(std::uint32_t state);
std::string_view cfModeName(std::uint32_t mode);
std::string_view clusterTypeName(std::uint32_t type);
/// "FC", "iSCSI", "FC+iSCSI" or "unknown".
std::string_view protocolName(std::uint8_t protocol);

}  // namespace quista::cli

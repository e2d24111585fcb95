// Values in the forms that storage engineers write them in. Pure functions.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace quista::cli {

using Wwn = std::array<std::uint8_t, 8>;
using Ipv6Address = std::array<std::uint8_t, 16>;

struct ScsiAddress {
    std::uint8_t port = 0;
    std::uint8_t bus = 0;
    std::uint8_t target = 0;
    std::uint8_t lun = 0;
};

/// Binary units with one decimal ("1.5 TiB"); whole bytes below 1 KiB ("512 B").
std::string formatSize(std::uint64_t bytes);

/// "50:0a:09:80:86:57:d8:ff"
std::string formatWwn(const Wwn& wwn);

/// Dotted, lowest byte first: 0x0A0200C0 is "192.0.2.10".
std::string formatIpv4(std::uint32_t address);

/// RFC 5952: lower case, no leading zeros, the longest run of zero groups as "::", IPv4-mapped
/// addresses with a dotted end.
std::string formatIpv6(const Ipv6Address& address);

/// The same form for an address written as eight groups of four digits; other texts as they are.
std::string shortenIpv6(const std::string& text);

/// "192.0.2.10:3260", "[2001:db8::1]:3260"
std::string formatPortal(const std::string& address, std::uint64_t tcpPort);

/// "port:bus:target:lun"
std::string formatScsiAddress(const ScsiAddress& address);

/// The one form of a path identifier: "0x80000001".
std::string formatPathId(std::uint32_t id);

/// Eight bytes as 16 hexadecimal digits, in array order.
std::string formatReservationKey(const std::array<std::uint8_t, 8>& key);

/// "9.4.2": major, minor and patch number, one byte each; the highest byte only when it is used.
std::string formatVersion(std::uint32_t version);

/// "1 path", "2 paths"
std::string formatCount(std::size_t count, const char* singular);

}  // namespace quista::cli

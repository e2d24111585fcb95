#include "cli/format.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>

namespace quista::cli {
namespace {

constexpr const char* kUnits[] = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};

using Groups = std::array<unsigned, 8>;

Groups groupsOf(const Ipv6Address& address) {
    Groups groups{};
    for (std::size_t i = 0; i < groups.size(); ++i) {
        groups[i] = static_cast<unsigned>(address[2 * i] << 8 | address[2 * i + 1]);
    }
    return groups;
}

struct Run {
    std::size_t first = 0;
    std::size_t length = 0;
};

// The first of the longest runs of zero groups; a single zero group is written out.
Run longestZeroRun(const Groups& groups) {
    Run longest;
    Run current;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i] != 0) {
            current = {i + 1, 0};
            continue;
        }
        ++current.length;
        if (current.length > longest.length) longest = current;
    }
    return longest.length > 1 ? longest : Run{};
}

bool isIpv4Mapped(const Groups& groups) {
    return std::all_of(groups.begin(), groups.begin() + 5, [](unsigned g) { return g == 0; }) &&
           groups[5] == 0xFFFF;
}

std::string joinGroups(const Groups& groups, std::size_t first, std::size_t last) {
    std::string text;
    for (std::size_t i = first; i < last; ++i) {
        text += fmt::format("{}{:x}", i == first ? "" : ":", groups[i]);
    }
    return text;
}

std::string joinBytes(const std::array<std::uint8_t, 8>& bytes, const char* separator) {
    return fmt::format("{:02x}", fmt::join(bytes, separator));
}

}  // namespace

std::string formatSize(std::uint64_t bytes) {
    if (bytes < 1024) return fmt::format("{} B", bytes);
    double value = static_cast<double>(bytes) / 1024;
    std::size_t unit = 0;
    // 1023.95 would be written as "1024.0": it belongs to the next unit.
    while (value >= 1023.95 && unit + 1 < std::size(kUnits)) {
        value /= 1024;
        ++unit;
    }
    return fmt::format("{:.1f} {}", value, kUnits[unit]);
}

std::string formatWwn(const Wwn& wwn) {
    return joinBytes(wwn, ":");
}

std::string formatIpv4(std::uint32_t address) {
    return fmt::format("{}.{}.{}.{}", address & 0xFF, address >> 8 & 0xFF, address >> 16 & 0xFF,
                       address >> 24);
}

std::string formatIpv6(const Ipv6Address& address) {
    const Groups groups = groupsOf(address);
    if (isIpv4Mapped(groups)) {
        return fmt::format("::ffff:{}.{}.{}.{}", address[12], address[13], address[14],
                           address[15]);
    }
    const Run zeros = longestZeroRun(groups);
    if (zeros.length == 0) return joinGroups(groups, 0, groups.size());
    return joinGroups(groups, 0, zeros.first) +
           "::" + joinGroups(groups, zeros.first + zeros.length, groups.size());
}

std::string shortenIpv6(const std::string& text) {
    constexpr std::size_t kGroup = 5;  // four digits and a colon
    Ipv6Address address{};
    if (text.size() != 8 * kGroup - 1) return text;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((i % kGroup == kGroup - 1) != (text[i] == ':')) return text;
    }
    for (std::size_t i = 0; i < address.size(); ++i) {
        const char* digits = text.data() + i / 2 * kGroup + i % 2 * 2;
        const auto [stop, error] = std::from_chars(digits, digits + 2, address[i], 16);
        if (error != std::errc() || stop != digits + 2) return text;
    }
    return formatIpv6(address);
}

std::string formatPortal(const std::string& address, std::uint64_t tcpPort) {
    const bool isIpv6 = address.find(':') != std::string::npos;
    return isIpv6 ? fmt::format("[{}]:{}", address, tcpPort)
                  : fmt::format("{}:{}", address, tcpPort);
}

std::string formatScsiAddress(const ScsiAddress& address) {
    return fmt::format("{}:{}:{}:{}", address.port, address.bus, address.target, address.lun);
}

std::string formatPathId(std::uint32_t id) {
    return fmt::format("0x{:08x}", id);
}

std::string formatReservationKey(const std::array<std::uint8_t, 8>& key) {
    return joinBytes(key, "");
}

std::string formatVersion(std::uint32_t version) {
    const std::uint32_t high = version >> 24;
    const std::string text =
        fmt::format("{}.{}.{}", version >> 16 & 0xFF, version >> 8 & 0xFF, version & 0xFF);
    return high == 0 ? text : fmt::format("{}.{}", high, text);
}

std::string formatCount(std::size_t count, const char* singular) {
    return fmt::format("{} {}{}", count, singular, count == 1 ? "" : "s");
}

}  // namespace quista::cli

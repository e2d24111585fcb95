#include "cli/names.h"

#include <windows.h>

#include <fmt/format.h>

#include "cli/text.h"
#include "quista/frame.h"
#include "quista/status.h"

namespace quista::cli {
namespace {

constexpr NamedCode kPolicies[] = {
    {1, "Failover Only"},     {2, "Round Robin"},    {3, "Round Robin with Subset"},
    {4, "Least Queue Depth"}, {5, "Weighted Paths"}, {6, "Least Blocks"},
    {7, "Vendor Specific"},
};

constexpr NamedCode kPathStates[] = {{1, "active"}, {2, "passive"}, {3, "failed"}, {4, "disabled"}};

constexpr NamedCode kAluaSupport[] = {
    {0, "none"}, {1, "implicit"}, {2, "explicit"}, {3, "implicit and explicit"}};

constexpr NamedCode kTargetPortGroupStates[] = {
    {0, "active/optimized"}, {1, "active/non-optimized"}, {2, "standby"}, {3, "unavailable"}};

constexpr NamedCode kLunStates[] = {{0, "online"}, {1, "offline"}, {2, "unreachable"}};

constexpr NamedCode kCfModes[] = {{0, "stand-alone"}, {1, "takeover pair"}};

constexpr NamedCode kClusterTypes[] = {{0, "none"}, {1, "two nodes"}, {2, "scale-out"}};

constexpr std::string_view kUnknownErrorText = "Unknown error";

// The system ends its texts with a line break, and breaks long ones in between.
std::string onOneLine(std::wstring_view text) {
    std::string line = toUtf8(text);
    for (char& character : line) {
        if (character == '\r' || character == '\n') character = ' ';
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

std::string_view knownName(std::span<const NamedCode> codes, std::uint32_t code) {
    const std::string_view name = nameIn(codes, code);
    return name.empty() ? "unknown" : name;
}

}  // namespace

std::string_view nameIn(std::span<const NamedCode> codes, std::uint32_t code) {
    for (const NamedCode& row : codes) {
        if (row.code == code) return row.name;
    }
    return {};
}

std::string statusName(std::uint32_t code) {
    if (code == DSM_SUCCESS) return "DSM_SUCCESS";
    if (const std::string_view name = nameIn(statusCodes(), code); !name.empty()) {
        return std::string(name);
    }
    if (const std::string_view name = nameIn(wmiCodes(), code); !name.empty()) {
        return std::string(name);
    }
    return fmt::format("0x{:08x}", code);
}

std::string statusText(std::uint32_t code) {
    const std::string text = ConvertError(code);
    return text == kUnknownErrorText ? std::string() : text;
}

std::string systemText(std::uint32_t code) {
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, code, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    if (length == 0) return {};
    std::string line = onOneLine(std::wstring_view(text, length));
    LocalFree(text);
    return line;
}

std::span<const NamedCode> policyNames() {
    return kPolicies;
}

std::string_view policyName(std::uint32_t policy) {
    return knownName(kPolicies, policy);
}
std::string_view pathStateName(std::uint32_t state) {
    return knownName(kPathStates, state);
}
std::string_view aluaSupportName(std::uint32_t support) {
    return knownName(kAluaSupport, support);
}
std::string_view targetPortGroupStateName(std::uint32_t state) {
    return knownName(kTargetPortGroupStates, state);
}
std::string_view lunStateName(std::uint32_t state) {
    return knownName(kLunStates, state);
}
std::string_view cfModeName(std::uint32_t mode) {
    return knownName(kCfModes, mode);
}
std::string_view clusterTypeName(std::uint32_t type) {
    return knownName(kClusterTypes, type);
}

std::string_view protocolName(std::uint8_t protocol) {
    switch (protocol & 3) {
        case 1:
            return "FC";
        case 2:
            return "iSCSI";
        case 3:
            return "FC+iSCSI";
        default:
            return "unknown";
    }
}

}  // namespace quista::cli

#include "cli/model.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "cli/text.h"
#include "quista/records/lun_records.h"

namespace quista::cli {
namespace {

// Stands in a text that the driver left empty or filled with something else than text.
constexpr std::wstring_view kPlaceholder = L"Invalid Entry";
// The limited texts of a LUN hold at most this many characters, then without a terminator.
constexpr std::size_t kLimitedText = 65;

constexpr std::uint8_t kFibreChannel = 1;
constexpr std::uint8_t kIscsi = 2;

std::optional<std::string> knownText(std::wstring_view text) {
    if (text.empty() || text == kPlaceholder) return std::nullopt;
    return toUtf8(text);
}

// Some texts stand in double quotes; the quotes are not part of the name.
std::optional<std::string> knownQuotedText(std::wstring_view text) {
    if (text.size() < 2 || text.front() != L'"' || text.back() != L'"') return knownText(text);
    if (text.size() == 2) return std::nullopt;
    return toUtf8(text.substr(1, text.size() - 2));
}

// The library doubles the backslashes of instance names for use in object paths.
std::optional<std::string> unescapedName(std::wstring_view text) {
    std::wstring name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        name += text[i];
        const bool isDoubled = text[i] == L'\\' && i + 1 < text.size() && text[i + 1] == L'\\';
        if (isDoubled) ++i;
    }
    return knownText(name);
}

template <std::size_t Size>
std::array<std::uint8_t, Size> bytesOf(const unsigned char (&field)[Size]) {
    std::array<std::uint8_t, Size> bytes{};
    std::copy(std::begin(field), std::end(field), bytes.begin());
    return bytes;
}

IscsiTarget iscsiTargetFrom(const _KORVADSM_PATHINFO& record) {
    IscsiTarget target;
    target.isIpv6 = record.TargetIPv4Address == 0;
    target.address = target.isIpv6 ? formatIpv6(bytesOf(record.TargetIPv6Address))
                                   : formatIpv4(record.TargetIPv4Address);
    target.tcpPort = record.TargetTCPPortNumber;
    target.portalGroup = record.TargetPortalGroupId;
    target.nodeName = knownQuotedText(boundedText(record.TargetiSCSINodeName));
    return target;
}

bool isBlank(const _KORVADSM_PATHINFO& record) {
    static const _KORVADSM_PATHINFO kBlank{};
    return std::memcmp(&record, &kBlank, sizeof record) == 0;
}

// The library sizes the block by the low 8 bits of the count, plus the one record that the type
// declares; records that no path object filled are blank.
std::vector<Path> pathsFrom(const _KORVADSM_DISKINFO& record) {
    const std::size_t room = (record.NumberPaths & 0xFFu) + 1;
    const std::size_t count = std::min<std::size_t>(record.NumberPaths, room);
    const _KORVADSM_PATHINFO* first = record.Paths;
    std::vector<Path> paths;
    for (std::size_t i = 0; i < count; ++i) {
        if (!isBlank(first[i])) paths.push_back(pathFrom(first[i]));
    }
    return paths;
}

}  // namespace

std::optional<std::string> Path::targetPort() const {
    if (fc) return formatWwn(fc->portName);
    if (!iscsi) return std::nullopt;
    return formatPortal(iscsi->address, iscsi->tcpPort);
}

std::size_t Lun::pathsAvailable() const {
    return static_cast<std::size_t>(std::count_if(
        paths.begin(), paths.end(), [](const Path& path) { return path.isAvailable(); }));
}

bool Lun::hasAllPaths() const {
    return status == DSM_SUCCESS && paths.size() == pathsReported;
}

Path pathFrom(const _KORVADSM_PATHINFO& record) {
    Path path;
    path.id = record.DsmId;
    path.pathId = record.PathId;
    path.address = {record.PortNumber, record.ScsiPathId, record.TargetId, record.Lun};
    path.state = record.PathState;
    path.protocol = record.Protocol;
    path.isProxy = record.Proxy != 0;
    path.isPrimary = record.PrimaryPath != 0;
    path.weight = record.PathWeight;
    path.aluaSupport = record.ALUASupport;
    path.targetPortGroupState = record.TargetPortGroupState;
    // A path with both protocol bits is filled as Fibre Channel alone.
    if ((record.Protocol & kFibreChannel) != 0) {
        path.fc = FcTarget{bytesOf(record.TargetFcpNodename), bytesOf(record.TargetFcpPortname)};
        path.targetAdapter = knownQuotedText(boundedText(record.TargetAdapterName));
    } else if ((record.Protocol & kIscsi) != 0) {
        path.iscsi = iscsiTargetFrom(record);
        path.targetAdapter = knownQuotedText(boundedText(record.TargetiSCSIAdapterName));
    }
    return path;
}

Lun lunFrom(const _KORVADSM_DISKINFO& record, unsigned long status) {
    const std::wstring_view serial = boundedText(record.SerialNumber, kLimitedText);
    Lun lun;
    lun.serialNumber = knownText(serial);
    lun.serialText = serial.empty() ? "-" : toUtf8(serial);
    lun.size = record.LunSize;
    lun.policy = record.LoadBalancePolicy;
    lun.storageSystem = knownText(boundedText(record.FilerName, kLimitedText));
    lun.storageVersion = knownText(boundedText(record.KORVAVersionString, kLimitedText));
    lun.storageVersionNumber = record.KORVAVersion;
    lun.lunPath = knownQuotedText(boundedText(record.LunPath));
    lun.instanceName = unescapedName(boundedText(record.InstanceName));
    lun.state = record.LunState;
    lun.cfMode = record.CFMode;
    lun.clusterType = record.clusterType;
    lun.reservationKey = bytesOf(record.ReservationKey);
    lun.pathsReported = record.NumberPaths;
    lun.paths = pathsFrom(record);
    lun.status = status;
    return lun;
}

}  // namespace quista::cli

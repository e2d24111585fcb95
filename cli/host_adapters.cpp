#include "cli/host_adapters.h"

#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <list>
#include <string_view>

#include "cli/format.h"
#include "cli/hints.h"
#include "cli/library_log.h"
#include "cli/names.h"
#include "cli/text.h"
#include "quista/adapters.h"

namespace quista::cli {
namespace {

constexpr int kBufferSize = 256;
using Buffer = std::array<char, kBufferSize>;
using Lookup = decltype(&GetFcAdapterInfoEx);

// A kind of path, and how the adapters of such paths are found.
struct Transport {
    const char* name;
    const char* function;
    Lookup lookup;
    std::size_t longestText;         ///< longer ones are cut, and then have no terminator
    const wchar_t* platformLibrary;  ///< what the library asks in turn
    const char* libraryName;
    const char* libraryHint;
    std::string (*describe)(unsigned long status);
    bool (*carries)(const Path& path);
};

std::string describeFc(unsigned long status) {
    if (status == 1) return "the HBA API knows no adapter, or cannot be used (status 1)";
    if (status != 0) return fmt::format("the HBA API answers with status {}", status);
    return "no port of an adapter reaches their targets";
}

std::string describeIscsi(unsigned long status) {
    constexpr unsigned long kNoMappings = 0xFFFFFFFF;
    if (status == kNoMappings) return "there are no active iSCSI target mappings";
    if (status != 0) return "the iSCSI discovery library fails";
    return "no iSCSI session reaches their targets";
}

constexpr Transport kTransports[] = {
    {"Fibre Channel", "GetFcAdapterInfoEx", GetFcAdapterInfoEx, 128, L"hbaapi.dll",
     "hbaapi.dll, the HBA API of Fibre Channel adapters,",
     "Windows or the adapters' drivers provide it.", describeFc,
     [](const Path& path) { return path.fc.has_value(); }},
    {"iSCSI", "GetISCSIAdapterInfoEx", GetISCSIAdapterInfoEx, kBufferSize, L"iscsidsc.dll",
     "iscsidsc.dll, Windows' iSCSI discovery library,", "It comes with Windows' iSCSI initiator.",
     describeIscsi, [](const Path& path) { return path.iscsi.has_value(); }},
};

// Keeps a library of the platform loaded, so that not every lookup loads it anew.
class PlatformLibrary {
  public:
    explicit PlatformLibrary(const wchar_t* name)
        : module_(LoadLibraryW(name)), error_(module_ == nullptr ? GetLastError() : 0) {}
    ~PlatformLibrary() {
        if (module_ != nullptr) FreeLibrary(module_);
    }
    PlatformLibrary(const PlatformLibrary&) = delete;
    PlatformLibrary& operator=(const PlatformLibrary&) = delete;

    unsigned long error() const { return error_; }

  private:
    HMODULE module_;
    unsigned long error_;
};

// A buffer that nothing was written to is full of these.
constexpr char kUnwritten = '0';

std::optional<std::string> textIn(const Buffer& buffer, std::size_t longest) {
    const auto isUnwritten = [](char character) { return character == kUnwritten; };
    if (std::all_of(buffer.begin(), buffer.end(), isUnwritten)) return std::nullopt;
    const std::string_view text(
        buffer.data(),
        static_cast<std::size_t>(std::find(buffer.begin(), buffer.end(), '\0') - buffer.begin()));
    if (text.empty()) return std::nullopt;
    return fromSystemCodePage(text.substr(0, longest));
}

struct Answer {
    unsigned long status = 0;
    std::optional<HostAdapter> adapter;
};

Answer ask(Session& session, const Transport& transport, const ScsiAddress& at) {
    Buffer address{};
    Buffer name{};
    Answer answer;
    answer.status = session.call(transport.function, [&] {
        return transport.lookup(at.port, at.bus, at.target, address.data(), kBufferSize,
                                name.data(), kBufferSize);
    });
    // The status may be that of another port: what was found counts.
    if (auto text = textIn(name, transport.longestText)) {
        answer.adapter = HostAdapter{std::move(*text), textIn(address, transport.longestText)};
    }
    return answer;
}

// Paths to several LUNs share the address of their target, which is asked about once.
class Answers {
  public:
    Answers(Session& session, const Transport& transport)
        : session_(session), transport_(transport) {}

    const Answer& at(const ScsiAddress& address) {
        for (const auto& [known, answer] : answers_) {
            const bool isSame = known.port == address.port && known.bus == address.bus &&
                                known.target == address.target;
            if (isSame) return answer;
        }
        return answers_.emplace_back(address, ask(session_, transport_, address)).second;
    }

  private:
    Session& session_;
    const Transport& transport_;
    std::list<std::pair<ScsiAddress, Answer>> answers_;
};

std::vector<Path*> pathsThat(bool (*carries)(const Path& path), std::vector<Lun>& luns) {
    std::vector<Path*> paths;
    for (Lun& lun : luns) {
        for (Path& path : lun.paths) {
            if (carries(path)) paths.push_back(&path);
        }
    }
    return paths;
}

void tellUnknown(const Transport& transport, std::size_t count, const std::string& reason,
                 const char* hint, std::optional<FailedStep> step, Severity severity,
                 Report& report) {
    report.add(
        severity,
        fmt::format("the adapter of {} is unknown: {}",
                    formatCount(count, fmt::format("{} path", transport.name).c_str()), reason),
        DSM_SUCCESS, hint);
    report.messages.back().step = std::move(step);
    if (severity == Severity::kError) report.fail(ExitCode::kFailed, DSM_SUCCESS);
}

void findAdaptersOf(const Transport& transport, Session& session, std::vector<Lun>& luns,
                    Severity severity, Report& report) {
    const std::vector<Path*> paths = pathsThat(transport.carries, luns);
    if (paths.empty()) return;
    const PlatformLibrary library(transport.platformLibrary);
    if (library.error() != ERROR_SUCCESS) {
        tellUnknown(transport, paths.size(),
                    fmt::format("{} cannot be loaded: {} ({})", transport.libraryName,
                                systemText(library.error()), library.error()),
                    transport.libraryHint, std::nullopt, severity, report);
        return;
    }
    const LogMark mark;
    Answers answers(session, transport);
    std::size_t unknown = 0;
    unsigned long firstStatus = 0;
    for (Path* path : paths) {
        const Answer& answer = answers.at(path->address);
        path->adapter = answer.adapter;
        if (answer.adapter) continue;
        if (unknown++ == 0) firstStatus = answer.status;
    }
    if (unknown == 0) return;
    tellUnknown(transport, unknown, transport.describe(firstStatus),
                "Check the adapters and the sessions of the host.", mark.failedStep(), severity,
                report);
}

// The records of the initiators, which the caller frees with their portals.
class InitiatorRecords {
  public:
    InitiatorRecords() = default;
    ~InitiatorRecords() {
        for (_KORVADSM_ISCSI_HBAINFO* record : list_) {
            CoTaskMemFree(record->Portals);
            CoTaskMemFree(record);
        }
    }
    InitiatorRecords(const InitiatorRecords&) = delete;
    InitiatorRecords& operator=(const InitiatorRecords&) = delete;

    std::list<_KORVADSM_ISCSI_HBAINFO*>& list() { return list_; }

  private:
    std::list<_KORVADSM_ISCSI_HBAINFO*> list_;
};

Portal portalFrom(const _KORVADSM_ISCSI_PORTAL& record) {
    Portal portal;
    if (record.Valid == 0) return portal;
    std::string address = toUtf8(boundedText(record.Address));
    // Host names stand in double quotes.
    if (address.size() >= 2 && address.front() == '"' && address.back() == '"') {
        address = address.substr(1, address.size() - 2);
    }
    portal.address = shortenIpv6(address);
    portal.tcpPort = record.Port;
    return portal;
}

Initiator initiatorFrom(const _KORVADSM_ISCSI_HBAINFO& record) {
    Initiator initiator;
    initiator.name = toUtf8(boundedText(record.Description));
    for (unsigned long i = 0; record.Portals != nullptr && i < record.PortalCount; ++i) {
        initiator.portals.push_back(portalFrom(record.Portals[i]));
    }
    return initiator;
}

}  // namespace

void findAdapters(Session& session, std::vector<Lun>& luns, Severity severity, Report& report) {
    session.provideAdapters();
    for (const Transport& transport : kTransports) {
        findAdaptersOf(transport, session, luns, severity, report);
    }
}

std::vector<Initiator> readInitiators(Session& session, const std::vector<Lun>& luns,
                                      Report& report) {
    InitiatorRecords records;
    std::list<_KORVADSM_ISCSI_HBAINFO*>* list = &records.list();
    const unsigned long status = session.call(
        "KORVADSMGetiSCSIAdapterIndexMap", [&] { return KORVADSMGetiSCSIAdapterIndexMap(list); });
    if (status != DSM_SUCCESS) {
        const bool isNeeded = std::any_of(luns.begin(), luns.end(), [](const Lun& lun) {
            return std::any_of(lun.paths.begin(), lun.paths.end(),
                               [](const Path& path) { return path.iscsi.has_value(); });
        });
        report.add(isNeeded ? Severity::kError : Severity::kWarning,
                   "cannot read the iSCSI initiators completely", status, logHint());
        if (isNeeded) report.fail(ExitCode::kFailed, status);
    }
    std::vector<Initiator> initiators;
    for (const _KORVADSM_ISCSI_HBAINFO* record : *list) {
        initiators.push_back(initiatorFrom(*record));
    }
    return initiators;
}

}  // namespace quista::cli

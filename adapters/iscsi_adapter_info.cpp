// The exports that name the iSCSI adapter of a path.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <iterator>
#include <string>

#include "adapters/adapter_buffers.h"
#include "adapters/iscsi_discovery.h"
#include "frame/console.h"
#include "frame/guard.h"
#include "quista/adapters.h"
#include "quista/frame.h"
#include "quista/status.h"

namespace quista {

namespace {

using iscsi::kDiscoveryFailed;

constexpr int kNoMappings = -1;
constexpr std::size_t kMaximumText = 256;

/// The SCSI address of a path as Windows sees it.
struct PathAddress {
    unsigned port;
    unsigned bus;
    unsigned target;
};

std::wstring boundedText(const wchar_t* text, std::size_t maximum) {
    return text != nullptr ? std::wstring(text, wcsnlen(text, maximum)) : std::wstring();
}

/// Reads the port number from a device name such as "\\.\scsi3:", in either of two forms and either
/// case.
bool readPort(const iscsi::TargetMapping& mapping, unsigned& port) {
    std::wstring name = boundedText(mapping.OSDeviceName, std::size(mapping.OSDeviceName));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](wchar_t character) { return static_cast<wchar_t>(towlower(character)); });
    int number = 0;
    if (std::swscanf(name.c_str(), L"\\\\.\\scsi%d:", &number) != 1 &&
        std::swscanf(name.c_str(), L"\\.\\scsi%d:", &number) != 1) {
        return false;
    }
    port = static_cast<unsigned>(number);
    return true;
}

/// The first mapping of the path; null when there is none.
const iscsi::TargetMapping* findMapping(const iscsi::RecordBuffer<iscsi::TargetMapping>& mappings,
                                        const PathAddress& path) {
    const auto matches = [&](const iscsi::TargetMapping& mapping) {
        unsigned port = 0;
        return readPort(mapping, port) && port == path.port && mapping.OSBusNumber == path.bus &&
               mapping.OSTargetNumber == path.target;
    };
    const auto* found = std::find_if(mappings.begin(), mappings.end(), matches);
    return found != mappings.end() ? found : nullptr;
}

/// The readable name of Windows' software initiator, whose device goes by three spellings; any
/// other initiator's own name.
std::wstring adapterNameOf(const std::wstring& initiator) {
    const bool software = initiator == L"Root\\SCSIADAPTER\\0000_0" ||
                          initiator == L"Root\\ISCSIPRT\\0000_0" ||
                          initiator == L"ROOT\\ISCSIPRT\\0000_0";
    return software ? L"MS-iSCSI-Initiator-0000_0" : initiator;
}

/// The initiator's address on the last connection of the session; empty without one.
std::wstring addressOfSession(const iscsi::RecordBuffer<iscsi::Session>& sessions,
                              const iscsi::SessionId& id) {
    const auto* session =
        std::find_if(sessions.begin(), sessions.end(), [&](const iscsi::Session& candidate) {
            return std::memcmp(&candidate.Id, &id, sizeof(id)) == 0;
        });
    std::wstring address;
    if (session == sessions.end()) return address;
    const auto* connections = session->Connections;
    const std::size_t count = sessions.bounded(connections, session->ConnectionCount);
    std::for_each(connections, connections + count, [&](const iscsi::Connection& connection) {
        address = boundedText(connection.InitiatorAddress, kMaximumText);
    });
    return address;
}

/// Writes a text into a buffer of 256 bytes, without a terminator when it fills all of them; an
/// empty text leaves the buffer alone.
void writeText(const std::wstring& text, char* buffer) {
    if (text.empty() || buffer == nullptr) return;
    const std::string bytes = toAnsi(text);
    const std::size_t length = std::min(bytes.size(), kAdapterTextBytes);
    std::memcpy(buffer, bytes.data(), length);
    if (length < kAdapterTextBytes) buffer[length] = '\0';
}

int failed(const wchar_t* place) {
    ReportError(place, DSM_HBA_API_LIBRARY_LOAD_FAILED);
    return kDiscoveryFailed;
}

int findAdapter(const PathAddress& path, char* hbaAddress, char* hbaName) {
    iscsi::RecordBuffer<iscsi::TargetMapping> mappings;
    if (iscsi::fetchTargetMappings(mappings) != 0) {
        return failed(
            L"QUISTA:GetISCSIAdapterInfo experienced an error getting the iSCSI target mappings");
    }
    if (mappings.isEmpty()) return kNoMappings;

    const iscsi::TargetMapping* mapping = findMapping(mappings, path);
    const std::wstring initiator =
        mapping != nullptr
            ? boundedText(mapping->InitiatorName, std::size(mapping->InitiatorName) - 1)
            : std::wstring();
    OutputDebugStringW(initiator.c_str());
    const std::wstring adapter = adapterNameOf(initiator);
    OutputDebugStringW(adapter.c_str());

    // Fetched whether a mapping matched or not: its failure is reported either way.
    iscsi::RecordBuffer<iscsi::Session> sessions;
    if (iscsi::fetchSessions(sessions) != 0) {
        return failed(
            L"QUISTA:GetISCSIAdapterInfo experienced an error retrieving the sessionList");
    }
    if (mapping != nullptr) writeText(addressOfSession(sessions, mapping->Session), hbaAddress);
    writeText(adapter, hbaName);
    return 0;
}

}  // namespace

}  // namespace quista

int GetISCSIAdapterInfo(unsigned int portNumber, unsigned int busNumber, unsigned int targetNumber,
                        char* hbaAddress, char* hbaName) {
    using namespace quista;
    int result = kDiscoveryFailed;
    guardedVoid([&] {
        result = findAdapter({portNumber, busNumber, targetNumber}, hbaAddress, hbaName);
    });
    return result;
}

unsigned long GetISCSIAdapterInfoEx(unsigned long portNumber, unsigned long busNumber,
                                    unsigned long targetNumber, char* hbaAddress,
                                    int hbaAddressLength, char* hbaName, int hbaNameLength) {
    using namespace quista;
    AdapterText address;
    AdapterText name;
    const int result =
        GetISCSIAdapterInfo(portNumber, busNumber, targetNumber, address.data(), name.data());
    address.copyTo(hbaAddress, hbaAddressLength);
    name.copyTo(hbaName, hbaNameLength);
    return static_cast<unsigned long>(result);
}

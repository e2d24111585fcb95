// Windows' iSCSI discovery library: the part of its published interface that the library uses,
// bound on first use so that the library also loads on a machine without it.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>

namespace quista::iscsi {

struct SessionId {
    ULONGLONG AdapterUnique;
    ULONGLONG AdapterSpecific;
};

struct TargetMapping {
    WCHAR InitiatorName[256];
    WCHAR TargetName[224];
    WCHAR OSDeviceName[260];
    SessionId Session;
    ULONG OSBusNumber;
    ULONG OSTargetNumber;
    ULONG LUNCount;
    void* LUNList;
};

struct Connection {
    SessionId ConnectionId;
    WCHAR* InitiatorAddress;
    WCHAR* TargetAddress;
    USHORT InitiatorSocket;
    USHORT TargetSocket;
    UCHAR CID[2];
};

struct Session {
    SessionId Id;
    WCHAR* InitiatorName;
    WCHAR* TargetNodeName;
    WCHAR* TargetName;
    UCHAR ISID[6];
    UCHAR TSID[2];
    ULONG ConnectionCount;
    Connection* Connections;
};

static_assert(sizeof(SessionId) == 16);
static_assert(sizeof(TargetMapping) == 1520);
static_assert(offsetof(TargetMapping, TargetName) == 512);
static_assert(offsetof(TargetMapping, OSDeviceName) == 960);
static_assert(offsetof(TargetMapping, Session) == 1480);
static_assert(offsetof(TargetMapping, OSBusNumber) == 1496);
static_assert(offsetof(TargetMapping, LUNList) == 1512);
static_assert(sizeof(Session) == 64);
static_assert(offsetof(Session, ISID) == 40);
static_assert(offsetof(Session, ConnectionCount) == 48);
static_assert(offsetof(Session, Connections) == 56);
static_assert(sizeof(Connection) == 40);
static_assert(offsetof(Connection, InitiatorSocket) == 32);

/// What the adapter lookups return when the discovery library fails.
inline constexpr int kDiscoveryFailed = -4;

/// Records in a buffer that also holds what they point to.
template <typename Record>
struct RecordBuffer {
    ULONG count = 0;
    std::size_t size = 0;
    std::unique_ptr<std::byte[]> bytes;

    bool isEmpty() const { return bytes == nullptr; }
    const Record* begin() const { return reinterpret_cast<const Record*>(bytes.get()); }
    const Record* end() const { return begin() + count; }

    /// How many of the elements that a record points to can be read: none without a pointer, and
    /// never more than the buffer holds behind one into it.
    template <typename Element>
    std::size_t bounded(const Element* elements, std::size_t wanted) const {
        if (elements == nullptr) return 0;
        const auto* first = reinterpret_cast<const std::byte*>(elements);
        const std::byte* last = bytes.get() + size;
        if (std::less<>()(first, bytes.get()) || !std::less<>()(first, last)) return wanted;
        return std::min(wanted, static_cast<std::size_t>(last - first) / sizeof(Element));
    }
};

/// Fetches the active target mappings. Without any there is no buffer.
/// @return 0 or kDiscoveryFailed
int fetchTargetMappings(RecordBuffer<TargetMapping>& mappings);

/// Fetches the session list. Without any there is no buffer.
/// @return 0 or kDiscoveryFailed
int fetchSessions(RecordBuffer<Session>& sessions);

}  // namespace quista::iscsi

#include "adapters/iscsi_discovery.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace quista::iscsi {

namespace {

template <typename Record>
using DiscoveryFunction = ULONG(WINAPI*)(ULONG* size, ULONG* count, Record* records);

/// The discovery library, which stays loaded once it was found; null when it is missing.
HMODULE discoveryLibrary() {
    static HMODULE library = nullptr;
    if (library == nullptr) library = LoadLibraryW(L"ISCSIDSC.dll");
    return library;
}

/// Resolves a function of the discovery library; null when library or function are missing.
template <typename Record>
DiscoveryFunction<Record> bind(const char* name) {
    const HMODULE library = discoveryLibrary();
    const FARPROC address = library != nullptr ? GetProcAddress(library, name) : nullptr;
    DiscoveryFunction<Record> function = nullptr;
    std::memcpy(&function, &address, sizeof(function));
    return function;
}

/// Makes the second call, with a buffer of the size that the first one asked for.
/// @return true when the library's result is among the accepted ones
template <typename Record, typename Accepts>
bool fetchInto(DiscoveryFunction<Record> function, ULONG size, RecordBuffer<Record>& records,
               Accepts&& accepts) {
    records.bytes.reset(new (std::nothrow) std::byte[size]{});
    if (records.bytes == nullptr) return false;
    records.size = size;
    ULONG used = size;
    // In: the records that fit; out: those returned.
    ULONG count = static_cast<ULONG>(size / sizeof(Record));
    const ULONG result = function(&used, &count, reinterpret_cast<Record*>(records.bytes.get()));
    if (!accepts(result)) {
        records.bytes.reset();
        return false;
    }
    // Never more records than the buffer holds.
    records.count = std::min(count, static_cast<ULONG>(size / sizeof(Record)));
    return true;
}

}  // namespace

int fetchTargetMappings(RecordBuffer<TargetMapping>& mappings) {
    const auto report = bind<TargetMapping>("ReportActiveIScsiTargetMappingsW");
    if (report == nullptr) return kDiscoveryFailed;
    ULONG size = 0;
    ULONG count = 0;
    // Only the size matters here, not the result.
    report(&size, &count, nullptr);
    if (size == 0) return 0;
    const auto accepts = [](ULONG result) {
        return result == 0 || result == 4 || result == 16 || result == 20;
    };
    return fetchInto(report, size, mappings, accepts) ? 0 : kDiscoveryFailed;
}

int fetchSessions(RecordBuffer<Session>& sessions) {
    const auto list = bind<Session>("GetIScsiSessionListW");
    if (list == nullptr) return kDiscoveryFailed;
    ULONG size = 0;
    ULONG count = 0;
    const ULONG result = list(&size, &count, nullptr);
    if (result != ERROR_SUCCESS && result != ERROR_INSUFFICIENT_BUFFER) return kDiscoveryFailed;
    if (size == 0) return 0;
    const auto accepts = [](ULONG second) { return second == ERROR_SUCCESS; };
    return fetchInto(list, size, sessions, accepts) ? 0 : kDiscoveryFailed;
}

}  // namespace quista::iscsi

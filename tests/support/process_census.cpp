#include "tests/support/process_census.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace quista::test {

namespace {

/// Calls `visit` with each block in use. It must not allocate, since heaps are locked.
template <typename Visit>
void visitHeapBlocks(Visit visit) {
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    for (const HANDLE heap : heaps) {
        HeapLock(heap);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heap, &entry)) {
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) visit(entry.lpData, entry.cbData);
        }
        HeapUnlock(heap);
    }
}

// The system's list of handles, as its undocumented but stable query gives it.
constexpr ULONG kSystemExtendedHandleInformation = 64;
constexpr LONG kInfoLengthMismatch = static_cast<LONG>(0xC0000004);

struct HandleEntry {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT creatorIndex;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

struct HandleList {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};

using QueryFunction = LONG(WINAPI*)(ULONG kind, void* buffer, ULONG size, ULONG* needed);

}  // namespace

std::size_t countHeapBlocks() {
    std::size_t count = 0;
    visitHeapBlocks([&](const void*, std::size_t) { ++count; });
    return count;
}

std::size_t countHeapTexts(const std::wstring& text) {
    const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
    std::size_t count = 0;
    visitHeapBlocks([&](const void* data, std::size_t room) {
        if (room >= size && data != text.data() && std::memcmp(data, text.c_str(), size) == 0) {
            ++count;
        }
    });
    return count;
}

std::size_t countHandles() {
    const FARPROC function =
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation");
    const auto query = reinterpret_cast<QueryFunction>(reinterpret_cast<void*>(function));
    std::vector<unsigned char> buffer(1 << 16);
    LONG status = 0;
    while ((status = query(kSystemExtendedHandleInformation, buffer.data(),
                           static_cast<ULONG>(buffer.size()), nullptr)) == kInfoLengthMismatch) {
        buffer.resize(buffer.size() * 2);
    }
    EXPECT_EQ(status, 0) << "the system does not list its handles";
    const auto* list = static_cast<const HandleList*>(static_cast<const void*>(buffer.data()));
    const ULONG_PTR self = GetCurrentProcessId();
    return static_cast<std::size_t>(
        std::count_if(list->entries, list->entries + list->count,
                      [&](const HandleEntry& entry) { return entry.processId == self; }));
}

}  // namespace quista::test

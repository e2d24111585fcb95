// What the tests of MPIO's disks and descriptors share: hosts, and records that the caller passes
// in.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "quista/mpio.h"
#include "quista/status.h"
#include "tests/support/allocation_spy.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/library_test.h"
#include "tests/support/mof_object.h"

namespace quista::test {

inline constexpr const wchar_t* kDiskClass = L"MPIO_DISK_INFO";
inline constexpr const wchar_t* kDriveClass = L"MPIO_DRIVE_INFO";
inline constexpr const wchar_t* kDescriptorClass = L"MPIO_GET_DESCRIPTOR";
inline constexpr const wchar_t* kPathClass = L"PDO_INFORMATION";
inline constexpr const wchar_t* kAddressClass = L"PDOSCSI_ADDR";

// Results of WMI as the log shows them.
inline constexpr unsigned long kEnd = 1;
inline constexpr unsigned long kNotFound = 0x80041002;
inline constexpr unsigned long kInvalidClass = 0x80041010;
inline constexpr unsigned long kNoObject = 0x80004003;  ///< no session, or no embedded object

HRESULT asResult(unsigned long code);

MofObject drive(const std::wstring& serialNumber, const std::wstring& dsmName = L"Data KORVA DSM",
                unsigned paths = 2);
/// An MPIO_DISK_INFO instance that counts as many drives as it lists.
MofObject diskInfo(const std::vector<MofObject>& drives, const std::wstring& instance = L"disks");

struct Address {
    int port = 0;
    int bus = 0;
    int target = 0;
    int lun = 0;
};
MofObject path(std::uint64_t identifier, const Address& address = {});
/// An MPIO_GET_DESCRIPTOR instance that counts as many paths as it lists.
MofObject descriptor(const std::wstring& deviceName, const std::vector<MofObject>& paths);

/// A _DSM_DISKS record with room for a number of drives and not a byte more.
class DiskRecord {
  public:
    explicit DiskRecord(std::size_t drives);

    _DSM_DISKS* get() const { return buffer_.as<_DSM_DISKS>(); }
    const _DSM_DRIVEINFO& drive(std::size_t index) const { return get()->DriveInfo[index]; }
    /// Whether nothing was written from this drive's entry on.
    bool untouchedFrom(std::size_t index) const;
    bool untouched() const { return buffer_.untouched(); }
    bool reservedUntouched() const;
    /// Whether a field holds the pattern behind its first `characters` characters.
    template <std::size_t Size>
    bool untouchedBehind(const wchar_t (&field)[Size], std::size_t characters) const {
        return untouchedBytes(field + characters, (Size - characters) * sizeof(wchar_t));
    }

  private:
    bool untouchedBytes(const void* begin, std::size_t length) const;

    GuardedBuffer buffer_;
};

/// An _MPIO_DESCRIPTOR_LIST record with room for a number of descriptors and not a byte more. It
/// frees what the library counted, unless told otherwise.
class DescriptorRecord {
  public:
    explicit DescriptorRecord(std::size_t descriptors);
    ~DescriptorRecord();
    DescriptorRecord(const DescriptorRecord&) = delete;
    DescriptorRecord& operator=(const DescriptorRecord&) = delete;

    _MPIO_DESCRIPTOR_LIST* get() const { return buffer_.as<_MPIO_DESCRIPTOR_LIST>(); }
    unsigned long count() const { return get()->NumberDescriptors; }
    _MPIO_GET_DESCRIPTOR& at(std::size_t index) const { return *get()->Descriptor[index]; }
    bool countUntouched() const;
    /// Whether no descriptor was stored from this one on.
    bool untouchedFrom(std::size_t index) const;
    /// Frees the first descriptors of the list, as its caller does.
    void free(std::size_t descriptors);

  private:
    GuardedBuffer buffer_;
};

/// Size of the block of a descriptor that counts so many paths.
constexpr std::size_t blockSize(std::size_t paths) {
    return sizeof(_MPIO_GET_DESCRIPTOR) + paths * sizeof(_PDO_INFORMATION);
}

/// The characters of a field up to its terminator or its end.
template <std::size_t Size>
std::wstring fieldText(const wchar_t (&field)[Size]) {
    std::size_t length = 0;
    while (length < Size && field[length] != L'\0') ++length;
    return {field, length};
}

/// A recorded call in short, such as "Get MPIO_DRIVE_INFO.SerialNumber" or "Next MPIO_DISK_INFO".
std::wstring callText(const simulator::CallRecord& call);

/// A host with MPIO's classes and the DSM's, without instances.
class MpioTest : public LibraryTest {
  protected:
    MpioTest() { host.loadLunClasses(); }

    /// The recorded calls of WMI's own methods, such as "Get MPIO_DRIVE_INFO.SerialNumber".
    std::vector<std::wstring> calls() const;
    /// How often a call was recorded.
    std::size_t countCalls(const std::wstring& call) const;
};

}  // namespace quista::test

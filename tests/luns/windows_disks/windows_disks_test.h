// What the tests of the Windows disks share: drives and media, and the caller's map.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "quista/luns.h"
#include "quista/status.h"
#include "tests/support/allocation_spy.h"
#include "tests/support/debug_output.h"
#include "tests/support/library_test.h"
#include "tests/support/mof_object.h"

namespace quista::test {

inline constexpr const wchar_t* kDriveClass = L"Win32_DiskDrive";
inline constexpr const wchar_t* kMediaClass = L"Win32_PhysicalMedia";
/// Bytes of the block of one disk.
inline constexpr std::size_t kDiskSize = 16;

// Results of WMI as the log shows them.
inline constexpr unsigned long kEnd = 1;
inline constexpr unsigned long kNotFound = 0x80041002;
inline constexpr unsigned long kInvalidClass = 0x80041010;
inline constexpr unsigned long kTimedOut = 0x40004;
inline constexpr unsigned long kNoObject = 0x80004003;  ///< no session, or no object

inline HRESULT asResult(unsigned long code) {
    return static_cast<HRESULT>(code);
}

MofObject drive(unsigned long index, const std::wstring& identifier, unsigned long long size);
MofObject medium(const std::wstring& serial, const std::wstring& tag);
/// The device path of a physical drive, which is a medium's usual tag.
std::wstring drivePath(unsigned long index);

/// What an entry of the map holds.
struct Disk {
    long number = 0;
    long long size = 0;

    bool operator==(const Disk&) const = default;
};
void PrintTo(const Disk& disk, std::ostream* out);

/// A map that a caller passes in, with the count and the status of the last call.
class DiskMap {
  public:
    DiskMap() = default;
    ~DiskMap();
    DiskMap(const DiskMap&) = delete;
    DiskMap& operator=(const DiskMap&) = delete;

    unsigned long readDrives() { return KORVADSMGetAllWin32_DiskDrive(&map_, count); }
    unsigned long readMedia() { return KORVADSMGetAllWin32_PhysicalMedia(&map_, count); }
    /// Reads the class's map.
    unsigned long read(const std::wstring& className) {
        return className == kDriveClass ? readDrives() : readMedia();
    }

    std::map<std::wstring, Disk> disks() const;
    std::map<std::wstring, _WMIDISKDRIVEDATA*>& raw() { return map_; }
    /// Frees the values and empties the map, as its caller does.
    void clear();

    long count = -1;

  private:
    std::map<std::wstring, _WMIDISKDRIVEDATA*> map_;
};

/// The places that a class's enumeration logs under.
std::string queryPlace(const std::wstring& className);
std::string nextPlace(const std::wstring& className);
std::string exceptionPlace(const std::wstring& className);
/// The log of an enumeration that came to its normal end.
LogLines endOf(const std::wstring& className);

class WindowsDisksTest : public LibraryTest {
  protected:
    WindowsDisksTest();

    /// Opens a session on a host with these disks.
    void openWith(const std::vector<MofObject>& disks);
    /// The calls so far, such as "Get Win32_DiskDrive.Index" and "Next Win32_DiskDrive 0x0".
    std::vector<std::string> calls(const std::wstring& method = L"") const;
};

}  // namespace quista::test

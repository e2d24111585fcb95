// One instance of the Windows disk classes.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>

namespace quista {

/// What is read from one instance.
struct DiskInstance {
    long diskNumber = -1;
    long long size = 0;
    std::wstring pnpDeviceId;
    std::wstring serialNumber;
};

/// Reads a Win32_PhysicalMedia instance: its serial number, and the disk number from its tag.
/// @return 0 or the result of the failed read
HRESULT ParseWin32_PhysicalMedia(IWbemClassObject* media, DiskInstance& disk);

/// Reads a Win32_DiskDrive instance: its device identifier, disk number and size. A drive without
/// identifier or disk number leaves the record as it was.
/// @return 0 or the result of the failed read
HRESULT ParseWin32_DiskDrive(IWbemClassObject* drive, DiskInstance& disk);

}  // namespace quista

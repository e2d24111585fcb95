// Records of the Windows disk classes in root\cimv2.
#pragma once

/// A Windows disk. Allocated by the library; freed by the caller with CoTaskMemFree.
struct _WMIDISKDRIVEDATA {
    long DiskNumber;  ///< physical drive number, -1 when unknown
    long long Size;   ///< in bytes; only set by the disk-drive enumeration
};

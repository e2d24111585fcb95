// LUN and path instances with distinct values in every property, for tests to change.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/mof_object.h"

namespace quista::test {

inline constexpr const wchar_t* kLunClass = L"KORVADSM_LUNINFO";
inline constexpr const wchar_t* kPathClass = L"KORVADSM_PATHINFO";
inline constexpr const wchar_t* kAddressClass = L"SCSI_ADDR";

/// Path 2:0:1:5 over Fibre Channel, active and primary.
MofObject fibreChannelPath(std::int32_t dsmId);
/// Path 4:0:3:6 over iSCSI to 192.168.0.1, passive, through the partner controller.
MofObject iscsiPath(std::int32_t dsmId);
/// As iscsiPath, to fe80::202:b3ff:fe1e:8329.
MofObject iscsiPathOverIPv6(std::int32_t dsmId);
/// A path of which only the identifier and the state matter.
MofObject pathInState(std::int32_t dsmId, int state);

/// A LUN of 1 TiB named "MPIO\Disk&Ven_KORVA\<serial>"; NumberOfPaths counts the paths.
MofObject lunWith(const std::wstring& serial, const std::vector<MofObject>& paths);
/// As lunWith, with an instance name of its own: two LUNs may have one serial number.
MofObject namedLun(const std::wstring& instanceName, const std::wstring& serial,
                   const std::vector<MofObject>& paths = {});

}  // namespace quista::test

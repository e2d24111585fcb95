// One path of a LUN.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include "quista/records/lun_records.h"

namespace quista {

/// Fills a path record from an embedded path object.
/// @return 0; DSM_WMI_PARSING_ERROR when a required property cannot be read; DSM_WMI_FAILURE when
///         an IPv6 address is none
DWORD ParsePathInfoKORVA(IWbemClassObject* path, _KORVADSM_PATHINFO* record);

}  // namespace quista

// A LUN's own properties.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include "quista/records/lun_records.h"

namespace quista {

/// Allocates a LUN's block with CoTaskMemAlloc and fills the LUN's own fields. The block stays with
/// the caller whatever the result.
/// @param out  receives the block as soon as it is allocated; null without memory
/// @param room receives the number of path records that the block has room for
/// @return 0; DSM_NO_MEMORY; DSM_WMI_PARSING_ERROR when LunPath cannot be read
DWORD ParseLunInfoKORVA(IWbemClassObject* lun, _KORVADSM_DISKINFO** out, LONG* room);

}  // namespace quista

// The DSM's counters in MPIO's registration of the DSM.
#pragma once

#include <windows.h>

#include "quista/records/policy_records.h"

namespace quista {

/// Reads the three counters of the registration named "Data KORVA DSM" into the record.
/// @return 0 or DSM_WMI_PARSING_ERROR
DWORD readDsmCounters(_QUISTA_PROPERTY_SET& set);

/// Writes the three counters of the record to the registration.
/// @return 0; DSM_WMI_PARSING_ERROR when the registration cannot be found; else the result of the
///         last WMI call made
DWORD writeDsmCounters(const _QUISTA_PROPERTY_SET& set);

}  // namespace quista

// MPIO's controller configuration.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>

#include "quista/records/mpio_records.h"

namespace quista {

/// Fills a zeroed block from the class MPIO_CONTROLLER_CONFIGURATION.
/// @param entryCount receives the number of entries filled; left alone where nothing says it
/// @return 0 or DSM_WMI_PARSING_ERROR
DWORD ParseMPIOControllerConfig(_MPIO_CONTROLLER_CONFIGURATION* config, DWORD* entryCount);

/// Fills one entry from an embedded MPIO_CONTROLLER_INFO object, which may be null.
/// @return 0 or DSM_WMI_PARSING_ERROR
DWORD ParseControllerInfo(IWbemClassObject* controller, _MPIO_CONTROLLER_INFO* entry);

/// The name of a controller's DSM, whose field may be filled without a terminator.
std::wstring associatedDsmOf(const _MPIO_CONTROLLER_INFO& controller);

}  // namespace quista

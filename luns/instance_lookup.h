// The instance name of a LUN, by its serial number.
#pragma once

#include <windows.h>

#include <wbemcli.h>

namespace quista {

/// Characters, terminator included, of the buffers that receive a quoted instance name.
inline constexpr std::size_t kInstanceNameCharacters = 256;

/// Finds the LUN whose serial number is exactly `serial` and writes its InstanceName, with doubled
/// backslashes and between double quotes, into a buffer of kInstanceNameCharacters.
/// @return 0; DSM_SERIAL_NOT_FOUND; DSM_WMI_FAILURE when the query fails; DSM_NO_MEMORY
DWORD GetInstance_for_SerialNo(wchar_t* serial, wchar_t* instanceName);

/// Reads an instance's bare serial number into a buffer of `capacity` characters.
/// @return 0 or DSM_WMI_PARSING_ERROR
DWORD ParseLunInfoSerialNumber(IWbemClassObject* lun, wchar_t* serial, std::size_t capacity);

}  // namespace quista

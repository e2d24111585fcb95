// Readers of single properties into plain types. They log a failure and never stop their caller.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <cstdint>
#include <string>

#include "quista/records/lun_records.h"

namespace quista {

/// Low byte of a property, whatever its type; 0 when it cannot be read, 0xFF when there is no
/// memory for its name.
std::uint8_t DsmGetPathInfoBval(IWbemClassObject* object, std::wstring name);

/// Low 32 bits of a property; 0 when it cannot be read, 0xFFFF when there is no memory for its
/// name.
std::uint32_t DsmGetPathInfoLval(IWbemClassObject* object, std::wstring name);

/// Copies a property's text into `destination`, at most `maximum` characters and without a
/// terminator: callers pass a cleared buffer. An empty character array gives "<empty>", one with
/// control characters its hexadecimal form, and a value that is neither a string nor a character
/// array "Invalid Entry". A string value is not freed.
/// @return 0 or the failure's code
HRESULT DsmGetWbemInfoGetStringVal(IWbemClassObject* object, std::wstring name,
                                   wchar_t* destination, std::uint32_t maximum);

/// Reads the four bytes of an embedded SCSI address into a path record.
/// @return 0, whatever the reads gave
DWORD DsmGetPathScsiAddress(IWbemClassObject* address, _KORVADSM_PATHINFO* path);

}  // namespace quista

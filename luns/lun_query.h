// The queries for LUN instances, and what the end of an enumeration means to the lookups.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>

#include "quista/records/lun_records.h"
#include "wmi/com_ref.h"

namespace quista {

inline constexpr const wchar_t* kAllLunsQuery = L"SELECT * FROM KORVADSM_LUNINFO";

/// The serial number as callers pass it; a null pointer counts as an empty text.
std::wstring serialText(const wchar_t* serial);

/// Starts the enumeration of all LUN instances.
HRESULT queryAllLuns(ComRef<IEnumWbemClassObject>& luns);

/// Starts the enumeration of the LUN instances with a serial number. It goes into the query as it
/// is, so a double quote in it makes the query invalid.
HRESULT queryLunsBySerial(const std::wstring& serial, ComRef<IEnumWbemClassObject>& luns);

/// The serial number of a record, whose field may be filled without a terminator.
std::wstring serialNumberOf(const _KORVADSM_DISKINFO& info);

/// The status of a full enumeration that `next` ended; any result without a status of its own, the
/// normal end included, keeps the status reached.
DWORD statusAfterLastLun(HRESULT next, DWORD reached);

}  // namespace quista

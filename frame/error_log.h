// The error log MPIOlog.dat: one line per logged event, appended.
#pragma once

#include <windows.h>

#include <string>

namespace quista {

/// Appends the line of an event, whatever its code; never fails towards its caller. Only the
/// results of IEnumWbemClassObject::Next come here directly: the normal end of an enumeration has
/// the number of DSM_ERROR, which the exported ReportError drops, and still leaves its line.
void writeLog(const wchar_t* where, DWORD code) noexcept;

/// Logs the code of a failed step as ReportError does; a step that succeeded (0) leaves no line.
/// @return the code
HRESULT logFailure(HRESULT code, const wchar_t* where);

}  // namespace quista

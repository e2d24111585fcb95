// Status texts, the error log and the WMI session.
//
// The caller initialises COM on its thread and sets process security up before DSMInitialize, and
// uses the library from one thread at a time.
#pragma once

/// Gives the constant message text of a status code, "Unknown error" for a code without one.
/// Callable at any time; the caller neither frees nor changes the text.
char* ConvertError(unsigned long code);

/// Appends a line to the error log MPIOlog.dat: the local time, the code, the place and, where the
/// system or the log's own names have one, a message. The file lies in the directory that the
/// registry value LogDir names, else in the current directory. Code 1 (DSM_ERROR) is never logged.
/// @param where short name of the step that failed
/// @param code  status code, HRESULT or Win32 error
void ReportError(const wchar_t* where, unsigned long code);

/// Opens the WMI session on root\wmi and root\cimv2, counts the MPIO LUNs and repairs missing
/// classes where it can. Every other export but ConvertError and ReportError needs it.
/// @param allowVistaRepair non-zero allows the repair of MPIO's classes on Windows 6.0
/// @return 0; DSM_WMI_CONNECT_FAILED when a connection failed (the other one stays usable); or the
///         status of the LUN count
unsigned long DSMInitialize(int allowVistaRepair);

/// Closes the WMI session. May be called at any time, also twice.
/// @return 0
unsigned long DSMUninitialize();

/// Tells whether the DSM's class KORVADSM_LUNINFO exists in root\wmi.
/// @return 0 when it exists, else DSM_ERROR
unsigned long DSMCheckForKORVADSMClasses();

/// Recompiles MOF files of the installation directory (registry value InstallDir) into root\wmi.
/// @param which 1: the DSM's classes; anything else: MPIO's classes
/// @return 0 when nothing failed, also when no installation directory is known; else the HRESULT
///         of the compiler's creation, or the codes of all failed compilations OR-ed
unsigned long DSMRepairWMI(unsigned char which);

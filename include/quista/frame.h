// Status texts, the error log and the WMI session.
//
// The caller initialises COM on its thread and sets process security up before DSMInitialize, and
// uses the library from one thread at a time.
#pragma once

/// Gives the constant message text of a status code, "Unknown error" for a code without one.
/// Callable at any time; the caller neither frees nor changes the text.
char* ConvertError(unsigned long code);

/// Appends a line to the error log MPIOlog.dat: the local time, the code, the place and, where the
/// system or the log's own names have one, a message; the system's goes first. The file lies in the
/// directory that the registry value LogDir names, under SOFTWARE\Velmora\MPIO or
/// SOFTWARE\Pelmark\MPIO as the company name in quista.dll's version resource tells, else in the
/// current directory. Where it cannot be opened, standard output gets a line that says so. Code 1
/// (DSM_ERROR) is never logged.
/// @param where short name of the step that failed
/// @param code  status code, HRESULT or Win32 error
void ReportError(const wchar_t* where, unsigned long code);

/// Opens the WMI session on root\wmi and root\cimv2, counts the MPIO LUNs and repairs missing
/// classes where it can. The exports that ask WMI need it: without a session they answer as if
/// their WMI calls had failed with 0x80004003. A second call opens a new session over the first,
/// which is lost. Each call leaves a line in the log, with code 45.
/// @param allowVistaRepair non-zero allows the repair of MPIO's classes on Windows 6.0; before,
/// they
///                         are repaired in any case, and from 6.1 on never
/// @return 0, also when a connection failed and the LUNs could be counted after a repair;
///         DSM_WMI_CONNECT_FAILED when a connection failed (the other one stays usable); or the
///         status of the LUN count
unsigned long DSMInitialize(int allowVistaRepair);

/// Closes the WMI session. May be called at any time, also twice.
/// @return 0
unsigned long DSMUninitialize();

/// Tells whether the DSM's class KORVADSM_LUNINFO exists in root\wmi.
/// @return 0 when it exists, else DSM_ERROR
unsigned long DSMCheckForKORVADSMClasses();

/// Recompiles MOF files of the installation directory into root\wmi. It needs COM, but no session.
/// The directory is the registry value InstallDir under SOFTWARE\Velmora\MPIO, else under
/// SOFTWARE\Pelmark\MPIO: at most 129 characters, and a path separator at their end. The compiler
/// stays until DSMUninitialize; each call replaces that of an earlier one, which is lost.
/// @param which 1: the DSM's classes; anything else: MPIO's classes
/// @return 0 when nothing failed, also when no installation directory is known; else the HRESULT
///         of the compiler's creation, or the codes of all compilations OR-ed, in which a mere
///         warning (2) counts too
unsigned long DSMRepairWMI(unsigned char which);

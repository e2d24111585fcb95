// The process-wide WMI session that every query uses.
#pragma once

#include <windows.h>

#include <wbemcli.h>

namespace quista {

extern IWbemLocator* gLocator;
extern IWbemServices* gServices;       ///< root\wmi: the DSM's and MPIO's classes
extern IWbemServices* gCimv2Services;  ///< root\cimv2: the Windows disk classes
extern IMofCompiler* gMofCompiler;     ///< made by the class repair
extern unsigned long gMpioLunCount;    ///< MPIO LUNs counted by DSMInitialize

}  // namespace quista

#include "frame/windows_version.h"

#include <windows.h>

namespace quista {

#ifdef _MSC_VER
#pragma warning(push)
#pragma warning(disable : 4996)  // GetVersionExW is deprecated, and is what the rule is about
#endif

WindowsVersion windowsVersion() {
    OSVERSIONINFOW record{};
    record.dwOSVersionInfoSize = sizeof(record);
    if (!GetVersionExW(&record)) return {};
    return {true, record.dwMajorVersion, record.dwMinorVersion};
}

#ifdef _MSC_VER
#pragma warning(pop)
#endif

}  // namespace quista

#include "cli/hints.h"

#include "quista/status.h"

namespace quista::cli {

const char* hintFor(unsigned long status) {
    switch (status) {
        case DSM_WMI_CONNECT_FAILED:
        case DSM_COM_INIT_FAILED:
        case DSM_COM_SECURITY_FAILED:
            return "Run it as an administrator, and check that the service \"Windows Management "
                   "Instrumentation\" is running.";
        case DSM_WMI_FAILURE:
        case DSM_WMI_PARSING_ERROR:
        case DSM_WMI_NOT_SUPPORTED:
            return installHint();
        default:
            return logHint();
    }
}

const char* installHint() {
    return "Check that Multipath I/O and the storage vendor's DSM are installed. "
           "--simulate standard shows a simulated host instead.";
}

const char* logHint() {
    return "MPIOlog.dat names the step that failed; it lies in the configured LogDir, else in "
           "%LOCALAPPDATA%\\Quista.";
}

}  // namespace quista::cli

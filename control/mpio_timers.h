// MPIO's timers, read and written together.
#pragma once

#include <windows.h>

namespace quista {

/// The properties of MPIO_TIMERS_COUNTERS.
struct MpioTimers {
    unsigned long pathVerifyEnabled = 0;
    unsigned long pathVerificationPeriod = 0;
    unsigned long pdoRemovePeriod = 0;
    unsigned long retryCount = 0;
    unsigned long retryInterval = 0;
};

/// Which timers a writer changes.
enum TimerSelection : unsigned {
    kPathVerifyEnabled = 1,
    kPathVerificationPeriod = 2,
    kPdoRemovePeriod = 4,
    kRetryCount = 8,
    kRetryInterval = 16,
};

/// Reads all timers of the first instance.
/// @return 0 or DSM_WMI_PARSING_ERROR, with `timers` unchanged
DWORD GetMpioTimersCounters(MpioTimers& timers);

/// Writes the selected timers of the first instance; the others go back as they were fetched.
/// @return 0 or DSM_WMI_PARSING_ERROR
DWORD SetMpioTimersCounters(const MpioTimers& timers, unsigned selection);

}  // namespace quista

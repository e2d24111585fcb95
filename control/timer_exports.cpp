// The exports that read and write one MPIO timer each.
#include <windows.h>

#include "control/mpio_timers.h"
#include "frame/guard.h"
#include "quista/control.h"
#include "quista/status.h"

namespace quista {

namespace {

template <typename Value>
DWORD getTimer(unsigned long MpioTimers::*field, Value* value) {
    return guarded(DSM_WMI_PARSING_ERROR, [&]() -> DWORD {
        MpioTimers timers;
        const DWORD status = GetMpioTimersCounters(timers);
        if (status == DSM_SUCCESS) *value = static_cast<Value>(timers.*field);
        return status;
    });
}

DWORD setTimer(unsigned long MpioTimers::*field, TimerSelection selection, unsigned long value) {
    return guarded(DSM_WMI_PARSING_ERROR, [&]() -> DWORD {
        MpioTimers timers;
        timers.*field = value;
        return SetMpioTimersCounters(timers, selection);
    });
}

}  // namespace

}  // namespace quista

using quista::MpioTimers;

unsigned long DSMGetPathVerifyEnabled(unsigned char* enabled) {
    return quista::getTimer(&MpioTimers::pathVerifyEnabled, enabled);
}

unsigned long DSMSetPathVerifyEnabled(unsigned char enabled) {
    return quista::setTimer(&MpioTimers::pathVerifyEnabled, quista::kPathVerifyEnabled, enabled);
}

unsigned long DSMGetPathVerificationPeriod(unsigned long* seconds) {
    return quista::getTimer(&MpioTimers::pathVerificationPeriod, seconds);
}

unsigned long DSMSetPathVerificationPeriod(unsigned long seconds) {
    return quista::setTimer(&MpioTimers::pathVerificationPeriod, quista::kPathVerificationPeriod,
                            seconds);
}

unsigned long DSMGetPDORemovePeriod(unsigned long* seconds) {
    return quista::getTimer(&MpioTimers::pdoRemovePeriod, seconds);
}

unsigned long DSMSetPDORemovePeriod(unsigned long seconds) {
    return quista::setTimer(&MpioTimers::pdoRemovePeriod, quista::kPdoRemovePeriod, seconds);
}

unsigned long DSMGetRetryCount(unsigned long* count) {
    return quista::getTimer(&MpioTimers::retryCount, count);
}

unsigned long DSMSetRetryCount(unsigned long count) {
    return quista::setTimer(&MpioTimers::retryCount, quista::kRetryCount, count);
}

unsigned long DSMGetRetryInterval(unsigned long* seconds) {
    return quista::getTimer(&MpioTimers::retryInterval, seconds);
}

unsigned long DSMSetRetryInterval(unsigned long seconds) {
    return quista::setTimer(&MpioTimers::retryInterval, quista::kRetryInterval, seconds);
}

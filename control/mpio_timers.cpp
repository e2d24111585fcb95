#include "control/mpio_timers.h"

#include <wbemcli.h>

#include "frame/error_log.h"
#include "frame/session.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/query.h"

namespace quista {

namespace {

constexpr const wchar_t* kClass = L"MPIO_TIMERS_COUNTERS";

/// One timer: where it is kept, and the places under which its reading and writing report.
struct Timer {
    TimerSelection selection;
    const wchar_t* property;
    unsigned long MpioTimers::*field;
    const wchar_t* getPlace;
    const wchar_t* putPlace;
};

// In the order in which they are read and written.
constexpr Timer kTimers[] = {
    {kPathVerifyEnabled, L"PathVerifyEnabled", &MpioTimers::pathVerifyEnabled,
     L"GetMpioTimersCounters::Get(PathVerifyEnabled)",
     L"SetMpioTimersCounters::Put(PathVerifyEnabled)"},
    {kPathVerificationPeriod, L"PathVerificationPeriod", &MpioTimers::pathVerificationPeriod,
     L"GetMpioTimersCounters::Get(PathVerificationPeriod)",
     L"SetMpioTimersCounters::Put(PathVerificationPeriod)"},
    {kPdoRemovePeriod, L"PDORemovePeriod", &MpioTimers::pdoRemovePeriod,
     L"GetMpioTimersCounters::Get(PDORemovePeriod)",
     L"SetMpioTimersCounters::Put(PDORemovePeriod)"},
    {kRetryCount, L"RetryCount", &MpioTimers::retryCount, L"GetMpioTimersCounters::Get(RetryCount)",
     L"SetMpioTimersCounters::Put(RetryCount)"},
    {kRetryInterval, L"RetryInterval", &MpioTimers::retryInterval,
     L"GetMpioTimersCounters::Get(RetryInterval)", L"SetMpioTimersCounters::Put(RetryInterval)"},
};

bool firstInstance(ComRef<IWbemClassObject>& instance, const wchar_t* enumPlace,
                   const wchar_t* nextPlace) {
    ComRef<IEnumWbemClassObject> instances;
    return logFailure(enumerateClass(kClass, instances), enumPlace) == S_OK &&
           nextOrLog(instances.get(), instance, nextPlace) == S_OK;
}

}  // namespace

DWORD GetMpioTimersCounters(MpioTimers& timers) {
    ComRef<IWbemClassObject> instance;
    if (!firstInstance(instance, L"GetMpioTimersCounters::CreateInstanceEnum",
                       L"GetMpioTimersCounters: IEnumWbemClassObject::Next")) {
        return DSM_WMI_PARSING_ERROR;
    }
    MpioTimers read;
    for (const Timer& timer : kTimers) {
        UniqueVariant value;
        if (getOrLog(instance.get(), timer.property, value, timer.getPlace) != S_OK) {
            return DSM_WMI_PARSING_ERROR;
        }
        read.*timer.field = value.rawLong();
    }
    timers = read;
    return DSM_SUCCESS;
}

DWORD SetMpioTimersCounters(const MpioTimers& timers, unsigned selection) {
    ComRef<IWbemClassObject> instance;
    if (!firstInstance(instance, L"SetMpioTimersCounters:CreateInstanceEnum",
                       L"SetMpioTimersCounters::IEnumWbemClassObject::Next")) {
        return DSM_WMI_PARSING_ERROR;
    }
    for (const Timer& timer : kTimers) {
        if ((selection & timer.selection) == 0) continue;
        if (logFailure(putLong(instance.get(), timer.property, timers.*timer.field),
                       timer.putPlace) != S_OK) {
            return DSM_WMI_PARSING_ERROR;
        }
    }
    // Kept: the place is logged as it stands, unformatted and with its line break.
    const HRESULT result = gServices->PutInstance(instance.get(), 0, nullptr, nullptr);
    return logFailure(result, L"SetMpioTimersCounters:PutInstance() failed: %s\n") == S_OK
               ? DSM_SUCCESS
               : DSM_WMI_PARSING_ERROR;
}

}  // namespace quista

#include "tests/control/keys/timer_table.h"

#include "tests/support/text.h"

namespace quista::test {

namespace {

unsigned long getEnabled(unsigned long& value) {
    auto byte = static_cast<unsigned char>(value);
    const unsigned long status = DSMGetPathVerifyEnabled(&byte);
    value = byte;
    return status;
}

unsigned long setEnabled(unsigned long value) {
    return DSMSetPathVerifyEnabled(static_cast<unsigned char>(value));
}

std::function<unsigned long(unsigned long&)> getter(unsigned long (*get)(unsigned long*)) {
    return [get](unsigned long& value) { return get(&value); };
}

}  // namespace

std::string Timer::name() const {
    return narrow(property);
}

std::wstring Timer::declared(unsigned long held) const {
    return std::wstring(property) + L" = " + std::to_wstring(held) + L";";
}

const std::vector<Timer>& timers() {
    static const std::vector<Timer> table{
        {L"PathVerifyEnabled", 1, getEnabled, setEnabled},
        {L"PathVerificationPeriod", 31, getter(DSMGetPathVerificationPeriod),
         DSMSetPathVerificationPeriod},
        {L"PDORemovePeriod", 22, getter(DSMGetPDORemovePeriod), DSMSetPDORemovePeriod},
        {L"RetryCount", 13, getter(DSMGetRetryCount), DSMSetRetryCount},
        {L"RetryInterval", 4, getter(DSMGetRetryInterval), DSMSetRetryInterval},
    };
    return table;
}

MofObject timerInstance(const std::wstring& instance) {
    MofObject object(kTimerClass);
    object.text(L"InstanceName", instance).boolean(L"Active", true);
    for (const Timer& timer : timers()) object.number(timer.property, timer.value);
    return object;
}

}  // namespace quista::test

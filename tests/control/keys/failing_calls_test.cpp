// Every WMI call of the keys', timers' and parameters' exports fails in turn.
#include <gtest/gtest.h>

#include "tests/control/keys/parameters_test.h"
#include "tests/mpio/each_call_fails.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

/// The property of a call such as "Get KORVADSM.ReservationKey".
std::string propertyOf(const std::wstring& call) {
    return narrow(call.substr(call.find(L'.') + 1));
}

class FailingSteeringTest : public EachCallFailsTest {
  protected:
    FailingSteeringTest() {
        host.add(dsm(L"KORVADSM\\0", {1, 2, 3, 4, 5, 6, 7, 8}));
        host.add(MofObject(kLunClass)
                     .text(L"InstanceName", L"LUN 0")
                     .text(L"SerialNumber", L"kvA7")
                     .numbers(L"ReservationKey", {1, 2, 3, 4, 5, 6, 7, 8}));
        host.add(MofObject(kTimerClass)
                     .text(L"InstanceName", L"timers")
                     .number(L"PathVerifyEnabled", 1)
                     .number(L"PathVerificationPeriod", 2)
                     .number(L"PDORemovePeriod", 3)
                     .number(L"RetryCount", 4)
                     .number(L"RetryInterval", 5));
        host.add(registration({entry(L"Another DSM", 1, counters(1, 2, 3)),
                               entry(kVendorDsm, 2, counters(4, 5, 6))}));
        host.add(methodsInstance());
        openSession();
    }
};

// ---- Keys

Outcome afterFailureInSetKey(const std::wstring& call, unsigned) {
    const std::string place = "KORVADSMSetPRKey::";
    if (call.starts_with(L"CreateInstanceEnum")) return {DSM_ERROR};
    if (call.starts_with(L"Next")) {
        return {DSM_ERROR,
                {{"KORVADSMSetPRKey: IEnumWbemClassObject::Next returned 0x%x", kResult}}};
    }
    const std::string method = narrow(call.substr(0, call.find(L' ')));
    return {DSM_ERROR, {{place + method + "(ReservationKey)", kResult}}};
}

Outcome afterFailureInGetKey(const std::wstring& call, unsigned) {
    if (call.starts_with(L"ExecQuery")) return {DSM_ERROR};
    if (call.starts_with(L"Next")) {
        return {DSM_ERROR, {{"KORVADSMGetPRKey: IEnumWbemClassObject::Next", kResult}}};
    }
    return {DSM_ERROR, {{"KORVADSMGetPRKey::Get(ReservationKey)", kResult}}};
}

TEST_F(FailingSteeringTest, KORVADSMSetPRKey) {
    failEachCall(
        [] {
            char key[] = "ABCDEFGH";
            return ::KORVADSMSetPRKey(key);
        },
        afterFailureInSetKey);
}

TEST_F(FailingSteeringTest, KORVADSMGetPRKey) {
    failEachCall(
        [] {
            wchar_t serialNumber[] = L"kvA7";
            const GuardedBuffer key(8);
            return ::KORVADSMGetPRKey(key.data(), serialNumber);
        },
        afterFailureInGetKey);
}

// ---- Timers

Outcome afterFailureInGetTimer(const std::wstring& call, unsigned) {
    const auto parsingError = [](const std::string& place) -> Outcome {
        return {DSM_WMI_PARSING_ERROR, {{place, kResult}}};
    };
    if (call.starts_with(L"CreateInstanceEnum")) {
        return parsingError("GetMpioTimersCounters::CreateInstanceEnum");
    }
    if (call.starts_with(L"Next")) {
        return parsingError("GetMpioTimersCounters: IEnumWbemClassObject::Next");
    }
    return parsingError("GetMpioTimersCounters::Get(" + propertyOf(call) + ")");
}

Outcome afterFailureInSetTimer(const std::wstring& call, unsigned) {
    const auto parsingError = [](const std::string& place) -> Outcome {
        return {DSM_WMI_PARSING_ERROR, {{place, kResult}}};
    };
    if (call.starts_with(L"CreateInstanceEnum")) {
        return parsingError("SetMpioTimersCounters:CreateInstanceEnum");
    }
    if (call.starts_with(L"Next")) {
        return parsingError("SetMpioTimersCounters::IEnumWbemClassObject::Next");
    }
    if (call.starts_with(L"PutInstance")) {
        return parsingError("SetMpioTimersCounters:PutInstance() failed: %s\r\n");
    }
    return parsingError("SetMpioTimersCounters::Put(RetryCount)");
}

TEST_F(FailingSteeringTest, DSMGetRetryCount) {
    failEachCall(
        [] {
            unsigned long count = 99;
            const unsigned long status = ::DSMGetRetryCount(&count);
            EXPECT_EQ(count, status == DSM_SUCCESS ? 4u : 99u);
            return status;
        },
        afterFailureInGetTimer);
}

TEST_F(FailingSteeringTest, DSMSetRetryCount) {
    failEachCall([] { return ::DSMSetRetryCount(6); }, afterFailureInSetTimer);
}

// ---- Parameters

/// The routine that both directions share, up to the entry; nothing for later calls.
std::optional<LogLine> lineOfRegistration(const std::wstring& call, unsigned occurrence) {
    const std::string counters = "GetDsmCounters::Get could not get dsmCounters";
    const LogLine missing{"GetKorvadsmParameters:: dsmParametersObj is missing",
                          DSM_WMI_PARSING_ERROR};
    if (call == L"CreateInstanceEnum MPIO_REGISTERED_DSM" || call == L"Next MPIO_REGISTERED_DSM") {
        return LogLine{"GetDSMCounters: IEnumWbemClassObject::Next", kResult};
    }
    if (call == L"Get MPIO_REGISTERED_DSM.DsmParameters") {
        return LogLine{"GetDsmCounters::Get(DsmParameters)", kResult};
    }
    // The vendor's entry is the second one; the first one may fail.
    if (call == L"Get DSM_PARAMETERS.DsmName" || call == L"QueryInterface DSM_PARAMETERS") {
        return occurrence == 2 ? std::optional(missing) : std::nullopt;
    }
    if (call == L"Get DSM_PARAMETERS.DsmContext" || call == L"Get DSM_PARAMETERS.DsmCounters") {
        return LogLine{counters, kResult};
    }
    if (call == L"QueryInterface DSM_COUNTERS") return LogLine{counters, kNoObject};
    return std::nullopt;
}

Outcome afterFailureInGetParameters(const std::wstring& call, unsigned occurrence) {
    if (call == L"Next KORVADSM") {
        return {kResult, {{"GetKorvadsmParameters: IEnumWbemClassObject::Next", kResult}}};
    }
    if (const auto line = lineOfRegistration(call, occurrence)) {
        return {DSM_WMI_PARSING_ERROR, {*line, {"Cannot get DSMCounters", DSM_WMI_PARSING_ERROR}}};
    }
    return {};
}

Outcome afterFailureInSetParameters(const std::wstring& call, unsigned occurrence) {
    if (call == L"Next KORVADSM") {
        return {kResult, {{"SetKorvadsmParameters: IEnumWbemClassObject::Next", kResult}}};
    }
    if (const auto line = lineOfRegistration(call, occurrence)) {
        return {DSM_WMI_PARSING_ERROR, {*line}};
    }
    // The driver refuses a call without one of its parameters.
    if (call == L"Put __PARAMETERS") return {0x80041008};
    // The bare class is no object of the method.
    if (call == L"Get MPIO_REGISTERED_DSM.InstanceName") return {0x8004103A};
    const bool stops = call.starts_with(L"GetObject") || call.starts_with(L"GetMethod") ||
                       call.starts_with(L"SpawnInstance") || call.starts_with(L"ExecMethod");
    return {stops ? kResult : DSM_SUCCESS};
}

TEST_F(FailingSteeringTest, DSMGetKorvadsmParameters) {
    failEachCall(
        [] {
            const GuardedBuffer set(sizeof(_QUISTA_PROPERTY_SET));
            return ::DSMGetKorvadsmParameters(0, set.as<_QUISTA_PROPERTY_SET>());
        },
        afterFailureInGetParameters);
}

TEST_F(FailingSteeringTest, DSMSetKorvadsmParameters) {
    failEachCall(
        [] {
            _QUISTA_PROPERTY_SET set{0, 1, 2, 3, 4};
            return ::DSMSetKorvadsmParameters(0, &set);
        },
        afterFailureInSetParameters);
}

}  // namespace
}  // namespace quista::test

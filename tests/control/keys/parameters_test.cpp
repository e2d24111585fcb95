#include "tests/control/keys/parameters_test.h"

namespace quista::test {

MofObject counters(unsigned removePeriod, unsigned retryCount, unsigned retryInterval) {
    return MofObject(kCounterClass)
        .number(L"PathVerifyEnabled", 101)
        .number(L"PathVerificationPeriod", 102)
        .number(L"PDORemovePeriod", removePeriod)
        .number(L"RetryCount", retryCount)
        .number(L"RetryInterval", retryInterval)
        .number(L"Reserved32", 106)
        .number(L"Reserved64", 107);
}

MofObject entry(const std::wstring& name, std::uint64_t context, const MofObject& counters) {
    return MofObject(kEntryClass)
        .text(L"DsmName", name)
        .unsignedNumber(L"DsmContext", context)
        .object(L"DsmCounters", counters);
}

MofObject registration(const std::vector<MofObject>& entries, const std::wstring& instance) {
    return MofObject(kRegistrationClass)
        .text(L"InstanceName", instance)
        .boolean(L"Active", true)
        .number(L"NumberDSMs", static_cast<std::int64_t>(entries.size()))
        .objects(L"DsmParameters", entries);
}

MofObject methodsInstance(const std::wstring& instance) {
    return MofObject(kMethodsClass).text(L"InstanceName", instance).boolean(L"Active", true);
}

ParametersTest::ParametersTest() {
    host.add(dsm(L"KORVADSM\\0", {1, 2, 3, 4, 5, 6, 7, 8}, 2));
    host.add(registration({entry(L"Another DSM", 0x11, counters(1, 2, 3)),
                           entry(kVendorDsm, 0xFFFFFA8004C31010, counters(130, 6, 9))}));
    host.add(methodsInstance());
    openSession();
    remember();
    debug.clear();
}

void ParametersTest::fill(unsigned long level, unsigned long removePeriod, unsigned long retryCount,
                          unsigned long retryInterval) {
    *record() = {kUnwritten, level, removePeriod, retryCount, retryInterval};
}

std::vector<unsigned long> ParametersTest::fields() const {
    return {record()->Reserved, record()->EventLogLevel, record()->PDORemovePeriod,
            record()->RetryCount, record()->RetryInterval};
}

void ParametersTest::registerDsms(const std::vector<MofObject>& entries) {
    host->removeInstances(kWmi, kRegistrationClass);
    host.add(registration(entries));
}

std::vector<std::wstring> ParametersTest::methodCalls() const {
    std::vector<std::wstring> texts;
    for (const simulator::CallRecord& call : host->trace()) {
        if (call.method == L"ExecMethod") {
            texts.push_back(call.path + L" " + call.detail);
        }
    }
    return texts;
}

}  // namespace quista::test

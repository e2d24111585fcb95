#include "tests/control/keys/keys_test.h"

#include "tests/support/text.h"

namespace quista::test {

MofObject dsm(const std::wstring& instance, const std::vector<std::int64_t>& key, int level) {
    return MofObject(kDsmClass)
        .text(L"InstanceName", instance)
        .boolean(L"Active", true)
        .number(L"DefaultLoadBalancePolicy", 2)
        .numbers(L"ReservationKey", key)
        .number(L"EventLogLevel", level);
}

testing::AssertionResult KeysTest::changedOnly(const std::wstring& before,
                                               const std::wstring& after) const {
    std::wstring expected = remembered_;
    const std::size_t place = expected.find(before);
    if (place == std::wstring::npos) {
        return testing::AssertionFailure() << "the repository never held " << narrow(before);
    }
    expected.replace(place, before.size(), after);
    const std::wstring held = host->dump();
    if (held == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the repository holds\n" << narrow(held);
}

void KeysTest::failPutInstance(const std::wstring& className, unsigned long code) {
    host.fail(L"IWbemServices", L"PutInstance", asResult(code), className);
}

std::vector<std::wstring> KeysTest::callsWithProperties() const {
    std::vector<std::wstring> texts;
    for (const simulator::CallRecord& call : host->trace()) {
        if (call.method == L"QueryInterface") continue;
        texts.push_back(callText(call));
        if (call.method == L"Put") texts.back() += L"." + call.detail;
    }
    return texts;
}

}  // namespace quista::test

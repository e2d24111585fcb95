#include "tests/wmi/method_call_fixture.h"

#include <algorithm>

namespace quista::test {

MethodCallTest::MethodCallTest() {
    host.loadText(
        L"class Operations {\n"
        L"    [key] string InstanceName;\n"
        L"    [Implemented] void SetPolicy([in] uint32 LoadBalancePolicy,\n"
        L"                                 [out] uint32 Status);\n"
        L"    [Implemented] void SetQuietly([in] uint32 LoadBalancePolicy,\n"
        L"                                  [out] uint32 Other);\n"
        L"    [Implemented] void SetWeight([in] uint32 Weight, [out] uint32 Status);\n"
        L"    [Implemented] void Refresh([out] uint32 ReturnCode);\n"
        L"    [Implemented] void RefreshQuietly([out] uint32 Other);\n"
        L"};\n");
    for (const wchar_t* name : {L"A\\B", L"C\\D", L"E"}) {
        host.add(MofObject(L"Operations").text(L"InstanceName", name));
    }
    openSession();
}

DWORD MethodCallTest::call(const wchar_t* method, const wchar_t* quotedName) {
    VARIANT* values[] = {&policy.get(), nullptr};
    return CallMethodForInstance(L"Operations", method, nullptr, values, 2, quotedName);
}

void MethodCallTest::setResult(const wchar_t* method, const wchar_t* outParameter, LONG value) {
    host->setMethodResult(L"Operations", method, outParameter, Value::bits(VT_I4, value).get());
}

void MethodCallTest::failObject(const wchar_t* objectMethod, HRESULT result,
                                const wchar_t* property) {
    host.fail(L"IWbemClassObject", objectMethod, result, L"", property);
}

std::vector<std::wstring> MethodCallTest::trace() const {
    std::vector<std::wstring> calls;
    for (const simulator::CallRecord& record : host->trace()) {
        calls.push_back(record.interfaceName + L"::" + record.method + L"(" + record.detail + L")");
    }
    return calls;
}

std::size_t MethodCallTest::nextCalls() const {
    const std::vector<std::wstring> calls = trace();
    return static_cast<std::size_t>(
        std::count(calls.begin(), calls.end(), L"IEnumWbemClassObject::Next()"));
}

}  // namespace quista::test

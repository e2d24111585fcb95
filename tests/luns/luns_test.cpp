#include "tests/luns/luns_test.h"

#include <algorithm>
#include <list>

#include "tests/support/text.h"

namespace quista::test {

namespace {

std::string shortClassName(const std::wstring& className) {
    if (className == kLunClass) return "LUN";
    if (className == kPathClass) return "path";
    if (className == kAddressClass) return "address";
    return narrow(className);
}

}  // namespace

LunsTest::LunsTest() {
    host.loadLunClasses();
}

void LunsTest::openWith(std::initializer_list<MofObject> luns) {
    for (const MofObject& lun : luns) host.add(lun);
    openSession();
}

ObjectReference<IWbemClassObject> LunsTest::onlyLun() {
    std::list<IWbemClassObject*> luns;
    long count = 0;
    EXPECT_EQ(KORVADSMGetAllDiskInfoEx(luns, count), 0u);
    EXPECT_EQ(count, 1);
    log.clear();
    host->clearTrace();
    return ObjectReference<IWbemClassObject>(luns.empty() ? nullptr : luns.front());
}

ParsedDisk LunsTest::parse(const MofObject& lun) {
    openWith({lun});
    return parse(onlyLun().get());
}

ParsedDisk LunsTest::parse(IWbemClassObject* lun) {
    _KORVADSM_DISKINFO* info = nullptr;
    const unsigned long status = ParseDiskInfoKORVA(lun, &info);
    return {status, TaskBlock<_KORVADSM_DISKINFO>(info)};
}

std::vector<std::string> LunsTest::reads() const {
    std::vector<std::string> result;
    for (const simulator::CallRecord& call : host->trace()) {
        if (call.method != L"Get") continue;
        result.push_back(shortClassName(call.className) + "." + narrow(call.detail));
    }
    return result;
}

std::vector<std::string> LunsTest::queries() const {
    std::vector<std::string> result;
    for (const simulator::CallRecord& call : host->trace()) {
        if (call.interfaceName == L"IWbemServices") {
            const std::wstring& what = call.detail.empty() ? call.className : call.detail;
            result.push_back(narrow(call.method + L" " + what));
        } else if (call.interfaceName == L"IEnumWbemClassObject") {
            result.push_back(narrow(call.method));
        }
    }
    return result;
}

ObjectReference<IUnknown> foreignObject() {
    IStream* stream = nullptr;
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, &stream), S_OK);
    return ObjectReference<IUnknown>(stream);
}

std::vector<ObjectReference<IUnknown>> pathsOf(IWbemClassObject* lun) {
    Value paths;
    EXPECT_EQ(lun->Get(L"Paths", 0, &paths.get(), nullptr, nullptr), S_OK);
    std::vector<ObjectReference<IUnknown>> result;
    LONG last = -1;
    SafeArrayGetUBound(paths.array(), 1, &last);
    for (LONG i = 0; i <= last; ++i) {
        IUnknown* object = nullptr;
        SafeArrayGetElement(paths.array(), &i, &object);
        result.emplace_back(object);
    }
    return result;
}

LogLines failureOf(const std::string& place, unsigned long code) {
    return code == 1 ? LogLines{} : LogLines{{place, code}};
}

std::vector<std::wstring> keptTexts(const std::wstring& serial) {
    return {L"storage1", L"KORVA Release 9.1.2", serial};
}

long countOf(const std::vector<std::size_t>& survivors, std::size_t size) {
    return static_cast<long>(std::count(survivors.begin(), survivors.end(), size));
}

}  // namespace quista::test

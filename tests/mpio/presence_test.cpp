#include "tests/mpio/presence_test.h"

namespace quista::test {

LogLine controllerEnd(unsigned long code) {
    return {"ParseMPIOControllerConfig::MPIO_CONTROLLER_CONFIGURATION::Next", code};
}

LogLine controllerFailure(const std::string& place, unsigned long code) {
    return {"Parse" + place, code};
}

MofObject controller(const std::wstring& dsm, unsigned state, unsigned identifierType) {
    return MofObject(kControllerClass)
        .number(L"IdentifierType", identifierType)
        .number(L"IdentifierLength", 9)
        .number(L"ControllerState", state)
        .number(L"Pad", 77)
        .text(L"AssociatedDsm", dsm);
}

MofObject configuration(const std::vector<MofObject>& controllers, const std::wstring& instance) {
    return MofObject(kConfigurationClass)
        .text(L"InstanceName", instance)
        .boolean(L"Active", true)
        .number(L"NumberControllers", static_cast<std::int64_t>(controllers.size()))
        .objects(L"ControllerInfo", controllers);
}

ReadConfiguration readConfiguration() {
    _MPIO_CONTROLLER_CONFIGURATION* block = nullptr;
    const unsigned long status = DSMGetControllerConfig(&block);
    return {status, decltype(ReadConfiguration::block)(block)};
}

void PrintTo(const Flag& flag, std::ostream* out) {
    *out << "status " << flag.status << ", flag " << static_cast<unsigned>(flag.value);
}

Flag isPresent() {
    Flag flag;
    flag.status = DSMIsMPIOPresent(&flag.value);
    return flag;
}

Flag isInstalled() {
    const ConsoleCapture listing;
    Flag flag;
    flag.status = KORVADSMIsInstalled(&flag.value);
    return flag;
}

void PresenceTest::openWith(const std::vector<MofObject>& controllers) {
    host.add(configuration(controllers));
    openSession();
}

void PresenceTest::openWithValue(const VARIANT& value) {
    openWith({controller(kVendorDsm)});
    host.replaceValue(kConfigurationClass, L"ControllerInfo", value);
}

std::string PresenceTest::printed(const std::function<void()>& call) {
    ConsoleCapture console;
    call();
    return console.stop();
}

unsigned char PresenceTest::isRegistered() {
    const ConsoleCapture listing;
    return KORVADSMIsLoaded();
}

}  // namespace quista::test

#include "tests/support/simulated_host.h"

#include <objbase.h>

#include <gtest/gtest.h>
#include <stdexcept>

#include "tests/support/text.h"

namespace quista::test {

namespace {

using simulator::CreateSimulatorFunction;
using simulator::DestroySimulatorFunction;
using simulator::LiveObjects;
using simulator::LoadError;

/// The simulator's DLL, loaded on first use so that tests without a host do not need it.
FARPROC simulatorFunction(const char* name) {
    static const HMODULE library = LoadLibraryW(L"quistasim.dll");
    const FARPROC function = library == nullptr ? nullptr : GetProcAddress(library, name);
    if (function == nullptr) throw std::runtime_error("quistasim.dll cannot be loaded");
    return function;
}

template <typename Function>
Function functionAt(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(simulatorFunction(name)));
}

LiveObjects sum(const LiveObjects& left, const LiveObjects& right) {
    return {left.locators + right.locators, left.services + right.services,
            left.enumerators + right.enumerators, left.objects + right.objects,
            left.compilers + right.compilers};
}

}  // namespace

SimulatedHost::SimulatedHost() {
    EXPECT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0);
    simulator_ = functionAt<CreateSimulatorFunction>("quistaCreateSimulator")();
    EXPECT_EQ(simulator_->start(), S_OK) << "the simulator cannot take WMI's place";
}

SimulatedHost::~SimulatedHost() {
    simulator_->stop();
    functionAt<DestroySimulatorFunction>("quistaDestroySimulator")(simulator_);
    CoUninitialize();
}

void SimulatedHost::check(bool loaded, const LoadError& error) {
    EXPECT_TRUE(loaded) << narrow(error.file) << ":" << error.line << ":" << error.column << ": "
                        << narrow(error.reason);
}

void SimulatedHost::load(const std::wstring& fileOrSample) {
    LoadError error;
    const bool loaded = simulator_->load(fileOrSample, error);
    check(loaded, error);
}

void SimulatedHost::loadText(const std::wstring& mof) {
    LoadError error;
    const bool loaded = simulator_->loadText(
        L"#pragma namespace(\"\\\\\\\\.\\\\root\\\\wmi\")\n" + mof, L"fixture", error);
    check(loaded, error);
}

void SimulatedHost::loadClasses(const std::wstring& name) {
    load(std::wstring(QUISTA_CLASS_FOLDER) + L"/" + name + L".mof");
}

void SimulatedHost::loadLunClasses() {
    for (const wchar_t* name : {L"pdo", L"mpio", L"korvadsm"}) loadClasses(name);
}

void SimulatedHost::add(const MofObject& instance, const std::wstring& nameSpace) {
    std::wstring escaped;
    for (const wchar_t character : nameSpace) {
        escaped += character;
        if (character == L'\\') escaped += character;
    }
    loadText(L"#pragma namespace(\"\\\\\\\\.\\\\" + escaped + L"\")\n" + instance.toMof() + L";\n");
}

void SimulatedHost::fail(const std::wstring& interfaceName, const std::wstring& method,
                         HRESULT result, const std::wstring& className,
                         const std::wstring& property, unsigned occurrence, unsigned count) {
    simulator_->addFault({interfaceName, method, className, property, occurrence, count, result});
}

void SimulatedHost::failConnect(const std::wstring& nameSpace, HRESULT result) {
    fail(L"IWbemLocator", L"ConnectServer", result, nameSpace);
}

void SimulatedHost::failEnumeration(const std::wstring& className, HRESULT result) {
    fail(L"IWbemServices", L"CreateInstanceEnum", result, className);
}

void SimulatedHost::failQuery(const std::wstring& className, HRESULT result) {
    fail(L"IWbemServices", L"ExecQuery", result, className);
}

void SimulatedHost::failNext(const std::wstring& className, HRESULT result, unsigned occurrence,
                             unsigned count) {
    fail(L"IEnumWbemClassObject", L"Next", result, className, L"", occurrence, count);
}

void SimulatedHost::failGet(const std::wstring& className, const std::wstring& property,
                            HRESULT result, unsigned occurrence, unsigned count) {
    fail(L"IWbemClassObject", L"Get", result, className, property, occurrence, count);
}

void SimulatedHost::failPut(const std::wstring& className, const std::wstring& property,
                            HRESULT result) {
    fail(L"IWbemClassObject", L"Put", result, className, property);
}

void SimulatedHost::failGetObject(const std::wstring& className, HRESULT result) {
    fail(L"IWbemServices", L"GetObject", result, className);
}

void SimulatedHost::failMethod(const std::wstring& className, const std::wstring& method,
                               HRESULT result) {
    fail(L"IWbemServices", L"ExecMethod", result, className, method);
}

void SimulatedHost::replaceValue(const std::wstring& className, const std::wstring& property,
                                 const VARIANT& value, unsigned occurrence, unsigned count) {
    simulator_->addOverride({className, property, occurrence, count}, value);
}

LiveObjectsCheck::LiveObjectsCheck(const SimulatedHost& host, LiveObjects allowed)
    : host_(host), expected_(sum(host->liveObjects(), allowed)) {}

LiveObjectsCheck::~LiveObjectsCheck() {
    EXPECT_EQ(host_->liveObjects(), expected_);
}

}  // namespace quista::test

namespace quista::simulator {

void PrintTo(const LiveObjects& objects, std::ostream* out) {
    *out << "{locators " << objects.locators << ", services " << objects.services
         << ", enumerators " << objects.enumerators << ", objects " << objects.objects
         << ", compilers " << objects.compilers << "}";
}

}  // namespace quista::simulator

#include "tests/adapters/fc_adapter_test.h"

#include <algorithm>
#include <cstring>

namespace quista::test {

namespace {

constexpr int kBufferLength = 256;

std::string textOf(const char (&buffer)[kBufferLength]) {
    return {buffer, strnlen(buffer, kBufferLength)};
}

}  // namespace

void PrintTo(const FoundAdapter& found, std::ostream* out) {
    *out << "{status " << found.status << ", address \"" << found.address << "\", name \""
         << found.name << "\"}";
}

HbaPort port(const std::string& osDeviceName, std::uint8_t last) {
    return {osDeviceName, {0x21, 0x00, 0x00, 0x24, 0xFF, 0x00, 0x00, last}};
}

std::string wwnText(std::uint8_t last) {
    constexpr const char* kDigits = "0123456789abcdef";
    return std::string("21:00:00:24:ff:00:00:") + kDigits[last >> 4] + kDigits[last & 0xF];
}

FoundAdapter findFcAdapter(unsigned long portNumber, unsigned long bus, unsigned long target) {
    char address[kBufferLength];
    char name[kBufferLength];
    std::memset(address, '?', sizeof(address));
    std::memset(name, '?', sizeof(name));
    const unsigned long status =
        GetFcAdapterInfoEx(portNumber, bus, target, address, kBufferLength, name, kBufferLength);
    return {status, textOf(address), textOf(name)};
}

std::size_t FcAdapterTest::countCalls(const std::string& call) const {
    const std::vector<std::string> calls = library->calls();
    return static_cast<std::size_t>(std::ranges::count(calls, call));
}

std::size_t FcAdapterTest::countDebugTexts(const std::wstring& text) const {
    return static_cast<std::size_t>(std::ranges::count(debugTexts(), text));
}

}  // namespace quista::test

// What the tests of MPIO's presence share: controllers, and a block that the library hands out.
#pragma once

#include <windows.h>

#include <objbase.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/mpio/mpio_test.h"
#include "tests/support/console_capture.h"

namespace quista::test {

inline constexpr const wchar_t* kConfigurationClass = L"MPIO_CONTROLLER_CONFIGURATION";
inline constexpr const wchar_t* kControllerClass = L"MPIO_CONTROLLER_INFO";
inline constexpr const wchar_t* kVendorDsm = L"Data KORVA DSM";
inline constexpr const wchar_t* kOtherDsm = L"Microsoft DSM";
/// Bytes of the block that every call allocates.
inline constexpr std::size_t kConfigurationSize = 11444;

/// The lines of the parser's failures.
LogLine controllerEnd(unsigned long code = kEnd);
LogLine controllerFailure(const std::string& place, unsigned long code);

MofObject controller(const std::wstring& dsm, unsigned state = 3, unsigned identifierType = 1);
/// An MPIO_CONTROLLER_CONFIGURATION instance that counts as many controllers as it lists.
MofObject configuration(const std::vector<MofObject>& controllers,
                        const std::wstring& instance = L"controllers");

struct BlockDeleter {
    void operator()(void* block) const { CoTaskMemFree(block); }
};
/// What one call of DSMGetControllerConfig gave.
struct ReadConfiguration {
    unsigned long status = 0;
    std::unique_ptr<_MPIO_CONTROLLER_CONFIGURATION, BlockDeleter> block;
};
ReadConfiguration readConfiguration();

/// A flag that a call writes or leaves alone.
struct Flag {
    static constexpr unsigned char kUntouched = 0xA5;

    unsigned long status = 0;
    unsigned char value = kUntouched;

    bool operator==(const Flag&) const = default;
};
void PrintTo(const Flag& flag, std::ostream* out);
Flag isPresent();
Flag isInstalled();

class PresenceTest : public MpioTest {
  protected:
    /// Opens a session on a host with these controllers.
    void openWith(const std::vector<MofObject>& controllers);
    /// Opens a session on a host whose ControllerInfo is a value of whatever type.
    void openWithValue(const VARIANT& value);

    /// What a call prints.
    static std::string printed(const std::function<void()>& call);
    /// What KORVADSMIsLoaded answers, its listing aside.
    static unsigned char isRegistered();
};

}  // namespace quista::test

// What the tests of the Fibre Channel lookup share: adapters, and a search for a path.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "quista/adapters.h"
#include "quista/status.h"
#include "tests/adapters/standin_library.h"
#include "tests/support/debug_output.h"
#include "tests/support/log_file.h"
#include "tests/support/work_folder.h"

namespace quista::test {

using simulator::Answer;
using simulator::HbaAdapter;
using simulator::HbaPort;
using simulator::HbaTarget;

// Statuses of the HBA API.
inline constexpr std::uint32_t kOk = 0;
inline constexpr std::uint32_t kError = 1;
inline constexpr std::uint32_t kNotSupported = 2;
inline constexpr std::uint32_t kMoreData = 7;
inline constexpr std::uint32_t kStaleData = 8;
inline constexpr std::uint32_t kBusy = 10;

/// How often a call is made at most while its answer is stale.
inline constexpr std::size_t kAttempts = 21;

/// What a buffer of 256 characters holds when nothing was found.
inline const std::string kNothing(256, '0');

/// What a lookup gives: the characters of each buffer up to a terminator or to the buffer's end.
struct FoundAdapter {
    unsigned long status = 0;
    std::string address;
    std::string name;

    bool operator==(const FoundAdapter&) const = default;
};

void PrintTo(const FoundAdapter& found, std::ostream* out);

/// A port with the WWN 21:00:00:24:ff:00:00:<last>, a byte in hexadecimal.
HbaPort port(const std::string& osDeviceName, std::uint8_t last = 0x01);
/// The text of that WWN.
std::string wwnText(std::uint8_t last = 0x01);

/// Looks for the adapter of a path into buffers of 256 characters.
FoundAdapter findFcAdapter(unsigned long portNumber, unsigned long bus, unsigned long target);

/// A machine whose HBA API library is the stand-in, without adapters.
class FcAdapterTest : public testing::Test {
  protected:
    FcAdapterTest() = default;

    /// How often a call of the API was made.
    std::size_t countCalls(const std::string& call) const;
    /// The texts that went to the debugger.
    const std::vector<std::wstring>& debugTexts() const { return debug_.texts(); }
    std::size_t countDebugTexts(const std::wstring& text) const;

    WorkFolder folder;
    LogFile log;
    HbaLibrary library;

  private:
    DebugOutputCapture debug_;
};

}  // namespace quista::test

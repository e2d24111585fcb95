// What the tests of the iSCSI lookup share: mappings and sessions, and a search for a path.
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
using simulator::IscsiMapping;
using simulator::IscsiSession;
using simulator::IscsiSessionId;

inline constexpr const char* kMappingsFunction = "ReportActiveIScsiTargetMappingsW";
inline constexpr const char* kSessionsFunction = "GetIScsiSessionListW";

inline constexpr int kNoMappings = -1;
inline constexpr int kDiscoveryFailed = -4;

inline const LogLine kMappingsFailed{
    "QUISTA:GetISCSIAdapterInfo experienced an error getting the iSCSI target mappings",
    DSM_HBA_API_LIBRARY_LOAD_FAILED};
inline const LogLine kSessionsFailed{
    "QUISTA:GetISCSIAdapterInfo experienced an error retrieving the sessionList",
    DSM_HBA_API_LIBRARY_LOAD_FAILED};

/// What a buffer that nobody wrote to holds.
inline const std::string kUntouched(256, '?');

/// What a lookup gives: the characters of each buffer up to a terminator or to the buffer's end.
struct FoundSession {
    int status = 0;
    std::string address;
    std::string name;

    bool operator==(const FoundSession&) const = default;
};

void PrintTo(const FoundSession& found, std::ostream* out);

/// The mapping of port 3, bus 0, target 1.
IscsiMapping mapping(const std::wstring& initiator = L"initiator",
                     const IscsiSessionId& session = {1, 2});

/// Looks for the session of a path into buffers of exactly 256 characters.
FoundSession findSession(unsigned port = 3, unsigned bus = 0, unsigned target = 1);

/// A machine whose iSCSI discovery library is the stand-in, without mappings and sessions.
class IscsiAdapterTest : public testing::Test {
  protected:
    IscsiAdapterTest() = default;

    /// Sets up one session that carries port 3, bus 0, target 1.
    void setPath(const IscsiMapping& path, const std::vector<std::wstring>& addresses);

    WorkFolder folder;
    LogFile log;
    IscsiLibrary library;
    DebugOutputCapture debug;
};

}  // namespace quista::test

// What the tests of keys, timers and parameters share: instances of the classes that hold them, and
// a repository whose changes can be told.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "quista/control.h"
#include "quista/status.h"
#include "tests/mpio/mpio_test.h"
#include "tests/mpio/values.h"

namespace quista::test {

inline constexpr const wchar_t* kDsmClass = L"KORVADSM";
inline constexpr const wchar_t* kLunClass = L"KORVADSM_LUNINFO";
inline constexpr const wchar_t* kTimerClass = L"MPIO_TIMERS_COUNTERS";
inline constexpr const wchar_t* kRegistrationClass = L"MPIO_REGISTERED_DSM";
inline constexpr const wchar_t* kEntryClass = L"DSM_PARAMETERS";
inline constexpr const wchar_t* kCounterClass = L"DSM_COUNTERS";
inline constexpr const wchar_t* kMethodsClass = L"MPIO_WMI_METHODS";

/// The results of element access: beyond the end of an array, and where there is no byte array.
inline constexpr unsigned long kBadIndex = 0x8002000B;
inline constexpr unsigned long kInvalidArgument = 0x80070057;

/// A KORVADSM instance.
MofObject dsm(const std::wstring& instance, const std::vector<std::int64_t>& key, int level = 2);

/// A host with MPIO's classes and the DSM's, without instances.
class KeysTest : public MpioTest {
  protected:
    /// Remembers what the repository holds.
    void remember() { remembered_ = host->dump(); }
    /// Whether it holds the same still.
    bool unchanged() const { return host->dump() == remembered_; }
    /// Whether it holds the same but for one place, the first that held `before`.
    testing::AssertionResult changedOnly(const std::wstring& before,
                                         const std::wstring& after) const;

    /// Lets PutInstance of a class fail.
    void failPutInstance(const std::wstring& className, unsigned long code);

    /// The recorded calls, with the property of Get and of Put.
    std::vector<std::wstring> callsWithProperties() const;

  private:
    std::wstring remembered_;
};

}  // namespace quista::test

// What the tests of the DSM's parameters share: MPIO's registration of the DSM, and the caller's
// record.
#pragma once

#include <string>
#include <vector>

#include "tests/control/keys/keys_test.h"
#include "tests/support/debug_output.h"

namespace quista::test {

inline constexpr const wchar_t* kVendorDsm = L"Data KORVA DSM";
inline constexpr const wchar_t* kDriverInstance = L"ROOT\\MPIO\\0000_0";

/// Counters with these three and four others: 101, 102, 106 and 107.
MofObject counters(unsigned removePeriod, unsigned retryCount, unsigned retryInterval);
/// A DSM's entry.
MofObject entry(const std::wstring& name, std::uint64_t context, const MofObject& counters);
/// An MPIO_REGISTERED_DSM instance that counts as many entries as it lists.
MofObject registration(const std::vector<MofObject>& entries,
                       const std::wstring& instance = kDriverInstance);
MofObject methodsInstance(const std::wstring& instance = kDriverInstance);

/// A host with two registered DSMs, of which the second is the vendor's, and an open session.
class ParametersTest : public KeysTest {
  protected:
    ParametersTest();

    unsigned long get(unsigned selector = 0) {
        return DSMGetKorvadsmParameters(selector, record());
    }
    unsigned long set(unsigned selector = 0) {
        return DSMSetKorvadsmParameters(selector, record());
    }

    _QUISTA_PROPERTY_SET* record() const { return buffer_.as<_QUISTA_PROPERTY_SET>(); }
    void fill(unsigned long level, unsigned long removePeriod, unsigned long retryCount,
              unsigned long retryInterval);
    /// The record's five fields, in order.
    std::vector<unsigned long> fields() const;

    /// Replaces the registration's entries.
    void registerDsms(const std::vector<MofObject>& entries);
    /// The calls on the registration and the methods' class, in short.
    std::vector<std::wstring> methodCalls() const;

    DebugOutputCapture debug;

  private:
    GuardedBuffer buffer_{sizeof(_QUISTA_PROPERTY_SET)};
};

/// What a field holds that was not written.
inline constexpr unsigned long kUnwritten = 0xA5A5A5A5;

}  // namespace quista::test

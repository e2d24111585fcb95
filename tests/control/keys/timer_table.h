// MPIO's timers, each with the exports that read and write it.
#pragma once

#include <functional>
#include <string>

#include "tests/control/keys/keys_test.h"

namespace quista::test {

struct Timer {
    const wchar_t* property;
    unsigned long value;  ///< on the host of these tests
    std::function<unsigned long(unsigned long&)> get;
    std::function<unsigned long(unsigned long)> set;

    std::string name() const;
    /// How the instance declares it, in MOF.
    std::wstring declared(unsigned long held) const;
};

/// All of them, in the order in which they are read and written.
const std::vector<Timer>& timers();

/// An MPIO_TIMERS_COUNTERS instance with the values of the table.
MofObject timerInstance(const std::wstring& instance = L"ROOT\\MPIO\\0000_0");

/// A host with timers and an open session.
class TimerTest : public KeysTest {
  protected:
    TimerTest() {
        host.add(timerInstance());
        openSession();
        remember();
    }
};

}  // namespace quista::test

// The class objects through which CoCreateInstance reaches a simulated host.
#pragma once

#include <windows.h>

#include <memory>
#include <unknwn.h>

#include "simulator/com/host.h"

namespace quista::simulator {

/// Registers the host for WMI's class identifiers in the apartment of the calling thread.
class Registration {
  public:
    Registration() = default;
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() { revoke(); }

    /// S_FALSE when it is registered already.
    HRESULT registerHost(const std::shared_ptr<Host>& host);
    void revoke();

  private:
    DWORD locator_ = 0;
    DWORD compiler_ = 0;
};

}  // namespace quista::simulator

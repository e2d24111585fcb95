// Reads the adapters of the simulated host, as a client of its WMI.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "wmi/com_ref.h"

namespace quista::simulator {

/// A connection to the namespace root\simulator of the host that plays WMI in the process. COM is
/// initialised by the caller.
class HostReader {
  public:
    HostReader();

    bool isConnected() const { return static_cast<bool>(services_); }
    /// Visits the instances of a class; a class that the host does not have has none.
    void visit(const wchar_t* className,
               const std::function<void(IWbemClassObject*)>& visitor) const;

  private:
    ComRef<IWbemServices> services_;
};

// Properties of an instance; empty or 0 when they have no value.
std::wstring readText(IWbemClassObject* instance, const wchar_t* property);
std::uint32_t readNumber(IWbemClassObject* instance, const wchar_t* property);
std::vector<std::uint8_t> readBytes(IWbemClassObject* instance, const wchar_t* property);
std::vector<std::wstring> readTexts(IWbemClassObject* instance, const wchar_t* property);

/// Text of the system's 8-bit code page.
std::string narrow(const std::wstring& text);

}  // namespace quista::simulator

// Checks a method call against the class's definition and hands it to the driver.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <memory>
#include <string_view>

#include "simulator/com/host.h"
#include "simulator/repository/object_path.h"

namespace quista::simulator {

/// Carries out `method` on the object that `path` names in `nameSpace`. `out` may be a null pointer
/// and stays untouched when the method returns no object.
HRESULT executeMethod(const std::shared_ptr<Host>& host, const std::wstring& nameSpace,
                      const ObjectPath& path, std::wstring_view method, IWbemClassObject* in,
                      IWbemClassObject** out);

}  // namespace quista::simulator

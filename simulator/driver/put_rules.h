// What drivers make of instances that clients put.
#pragma once

#include <windows.h>

#include <string>

#include "simulator/repository/cim_instance.h"
#include "simulator/repository/repository.h"

namespace quista::simulator {

/// Puts a client's instance. A number beyond what the class declares with MaxValue or MinValue is
/// refused with WBEM_E_INVALID_PARAMETER. A changed reservation key of the DSM is shown by all of
/// its LUNs.
HRESULT putByRules(Repository& repository, const std::wstring& nameSpace,
                   const CimInstance& instance, PutMode mode);

}  // namespace quista::simulator

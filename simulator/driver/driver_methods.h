// Where WMI methods meet the driver that carries them out.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "simulator/repository/cim_class.h"
#include "simulator/repository/cim_instance.h"
#include "simulator/repository/repository.h"

namespace quista::simulator {

/// A method call whose path, method and parameters are in order.
struct MethodCall {
    Repository& repository;
    const std::wstring& nameSpace;
    const CimClass& definition;
    const CimMethod& method;
    CimInstancePtr instance;      ///< a null pointer for a static method
    CimInstancePtr inParameters;  ///< a null pointer when the client passed none
};

struct MethodOutcome {
    HRESULT result = S_OK;
    /// An instance of the out-signature; nothing for a method that returns no object.
    std::optional<CimInstance> outParameters;
};

class DriverMethods {
  public:
    virtual ~DriverMethods() = default;
    virtual MethodOutcome execute(const MethodCall& call) = 0;
};

/// A driver to which every request is fine: it changes nothing and every out-parameter is 0, FALSE,
/// empty text, or NULL where the type has no such value. It stands behind the methods of classes
/// that no simulated driver knows.
class AgreeableDriver final : public DriverMethods {
  public:
    MethodOutcome execute(const MethodCall& call) override;
};

}  // namespace quista::simulator

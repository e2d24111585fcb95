// What tests and hosts prescribe for the outcome of WMI methods, in place of what the driver makes
// of them.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/com/owned_variant.h"
#include "simulator/driver/driver_methods.h"
#include "simulator/driver/method_results.h"

namespace quista::simulator {

/// Lets the driver carry a method out and then puts prescribed out-parameters in place of its own.
/// Where a refusal is prescribed the driver is not asked.
class PrescribedMethods final : public DriverMethods {
  public:
    explicit PrescribedMethods(std::unique_ptr<DriverMethods> driver);

    /// The out-parameter gets this value from now on; a value that its type cannot take fails the
    /// call with WBEM_E_TYPE_MISMATCH.
    void prescribe(std::wstring_view className, std::wstring_view method,
                   std::wstring_view outParameter, const VARIANT& value);
    /// The method succeeds without an out object from now on.
    void prescribeNoOutput(std::wstring_view className, std::wstring_view method);
    void clear() { prescriptions_.clear(); }

    MethodOutcome execute(const MethodCall& call) override;

  private:
    struct Prescription {
        std::wstring className;
        std::wstring method;
        std::wstring outParameter;  ///< empty: no out object
        OwnedVariant value;
    };

    std::vector<MethodResult> resultsFor(const MethodCall& call) const;

    std::unique_ptr<DriverMethods> driver_;
    std::vector<Prescription> prescriptions_;
};

}  // namespace quista::simulator

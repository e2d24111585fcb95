// The simulated drivers behind WMI's methods.
#pragma once

#include "simulator/driver/driver_methods.h"

namespace quista::simulator {

/// Carries out the methods of the DSM driver and of MPIO: what they change is read back alike from
/// the vendor's and from MPIO's classes. Refusals come in the method's ReturnCode or Status
/// (`DriverStatus`) and change nothing. Other methods are agreed to.
class KorvaDriver final : public DriverMethods {
  public:
    MethodOutcome execute(const MethodCall& call) override;

  private:
    AgreeableDriver others_;
};

}  // namespace quista::simulator

// The field tables of LUNs and of the summary over them.
#pragma once

#include "cli/fields.h"
#include "cli/health.h"
#include "cli/model.h"

namespace quista::cli {

/// The serial number, or what stands for it where it cannot be read.
Value serialOf(const Lun& lun);

Fields<Lun> lunFields();
Fields<HealthSummary> summaryFields();

}  // namespace quista::cli

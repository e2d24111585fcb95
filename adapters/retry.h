// Retrying a call of the HBA API whose answer was stale.
#pragma once

#include "adapters/hba_api.h"

namespace quista {

/// Makes an attempt up to 21 times, while the answer is stale data.
template <typename Attempt>
hba::Status retryWhileStale(Attempt&& attempt) {
    constexpr int kAttempts = 21;
    hba::Status status = hba::kStaleData;
    for (int i = 0; i < kAttempts && status == hba::kStaleData; ++i) status = attempt();
    return status;
}

}  // namespace quista

// The calls of the library that are measured.
#pragma once

#include <vector>

#include "bench/bench_host.h"

namespace quista::bench {

/// One use of the library, as a caller would write it; false when the library refused.
struct MeasuredCall {
    const char* name;
    bool (*run)(const BenchHost& host);
};

const std::vector<MeasuredCall>& measuredCalls();

}  // namespace quista::bench

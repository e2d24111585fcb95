// Prints, for hosts of several sizes, what each use of the library costs: the WMI calls that it
// makes and the median time of several runs.
#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <stdexcept>

#include "bench/bench_host.h"
#include "bench/measured_calls.h"

namespace {

using quista::bench::BenchHost;
using quista::bench::HostSize;
using quista::bench::MeasuredCall;

constexpr std::array<HostSize, 3> kSizes = {{{10, 4}, {100, 4}, {500, 8}}};
constexpr std::size_t kRuns = 5;

void runOrThrow(const MeasuredCall& call, const BenchHost& host) {
    if (!call.run(host)) throw std::runtime_error(call.name);
}

std::size_t countWmiCalls(const MeasuredCall& call, const BenchHost& host) {
    host.simulator().setTracing(true);
    host.simulator().clearTrace();
    runOrThrow(call, host);
    const std::size_t calls = host.simulator().trace().size();
    host.simulator().setTracing(false);
    return calls;
}

double medianMilliseconds(const MeasuredCall& call, const BenchHost& host) {
    std::array<double, kRuns> times{};
    for (double& time : times) {
        const auto begin = std::chrono::steady_clock::now();
        runOrThrow(call, host);
        const std::chrono::duration<double, std::milli> elapsed =
            std::chrono::steady_clock::now() - begin;
        time = elapsed.count();
    }
    std::sort(times.begin(), times.end());
    return times[kRuns / 2];
}

void measure(HostSize size) {
    const BenchHost host(size);
    fmt::print("{} LUNs of {} paths\n", size.luns, size.pathsPerLun);
    fmt::print("  {:<22} {:>9} {:>10}\n", "", "WMI calls", "ms");
    for (const MeasuredCall& call : quista::bench::measuredCalls()) {
        const std::size_t calls = countWmiCalls(call, host);
        fmt::print("  {:<22} {:>9} {:>10.2f}\n", call.name, calls, medianMilliseconds(call, host));
    }
}

}  // namespace

int main() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) return 1;
    try {
        for (const HostSize size : kSizes) measure(size);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench: %s failed\n", failure.what());
        return 1;
    }
    CoUninitialize();
    return 0;
}

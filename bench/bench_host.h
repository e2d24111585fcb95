// A generated host, started and open for the length of a measurement.
#pragma once

#include <string>

#include "simulator/simulator.h"

namespace quista::bench {

/// How large a host is.
struct HostSize {
    unsigned luns;
    unsigned pathsPerLun;
};

/// Generates a host, plays it to the process and opens the library's session on it.
class BenchHost {
  public:
    explicit BenchHost(HostSize size);
    ~BenchHost();
    BenchHost(const BenchHost&) = delete;
    BenchHost& operator=(const BenchHost&) = delete;

    simulator::Simulator& simulator() const { return *simulator_; }
    HostSize size() const { return size_; }
    /// Serial number of the last LUN: what a lookup has to walk furthest for.
    const std::wstring& lastSerial() const { return lastSerial_; }
    /// DsmId of the last path of the last LUN, widened as the path operations take it.
    unsigned long long lastPath() const { return lastPath_; }

  private:
    void findLastPath();

    HostSize size_;
    simulator::Simulator* simulator_;
    std::wstring lastSerial_;
    unsigned long long lastPath_ = 0;
};

}  // namespace quista::bench

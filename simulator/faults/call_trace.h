// The record of all calls that clients made.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "simulator/faults/call.h"
#include "simulator/simulator.h"

namespace quista::simulator {

class CallTrace {
  public:
    void record(const Call& call, HRESULT result);
    void setEnabled(bool enabled) { enabled_ = enabled; }
    void clear() { records_.clear(); }
    std::vector<CallRecord> records() const { return records_; }

  private:
    std::vector<CallRecord> records_;
    bool enabled_ = true;
};

}  // namespace quista::simulator

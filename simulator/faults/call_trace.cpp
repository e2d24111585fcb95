#include "simulator/faults/call_trace.h"

namespace quista::simulator {

void CallTrace::record(const Call& call, HRESULT result) {
    if (!enabled_) return;
    const std::wstring_view detail = call.detail.empty() ? call.property : call.detail;
    records_.push_back({call.interfaceName, call.method, std::wstring(call.className),
                        std::wstring(detail), result, std::wstring(call.path), call.valueType,
                        call.cimType});
}

}  // namespace quista::simulator

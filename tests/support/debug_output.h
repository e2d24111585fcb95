// Captures what the library sends to the debugger.
#pragma once

#include <string>
#include <vector>

namespace quista::test {

/// Collects the texts of OutputDebugString for the object's life, whichever thread sends them. One
/// capture at a time.
class DebugOutputCapture {
  public:
    DebugOutputCapture();
    ~DebugOutputCapture();
    DebugOutputCapture(const DebugOutputCapture&) = delete;
    DebugOutputCapture& operator=(const DebugOutputCapture&) = delete;

    /// The texts so far, one per call, line breaks included.
    const std::vector<std::wstring>& texts() const { return texts_; }
    void clear() { texts_.clear(); }

  private:
    friend struct DebugOutputHandler;

    std::vector<std::wstring> texts_;
    void* handler_ = nullptr;
};

}  // namespace quista::test

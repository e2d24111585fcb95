// Captures what the library prints to standard output by contract.
#pragma once

#include <string>

namespace quista::test {

/// Sends standard output to a file for the object's life. Works where library and test share one C
/// runtime, as MinGW builds do.
class ConsoleCapture {
  public:
    ConsoleCapture();
    ~ConsoleCapture();
    ConsoleCapture(const ConsoleCapture&) = delete;
    ConsoleCapture& operator=(const ConsoleCapture&) = delete;

    /// Ends the capture and gives the bytes that were written, line ends as on disk.
    std::string stop();

  private:
    void restore();

    std::wstring filePath_;
    int saved_ = -1;
};

}  // namespace quista::test

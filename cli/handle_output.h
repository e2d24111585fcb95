// Output to one of the process's standard handles.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

#include "cli/output.h"

namespace quista::cli {

/// A console gets UTF-16 and so is independent of its code page, and its own attributes for the
/// escape sequences in the text. Anything else gets UTF-8 bytes without a byte-order mark, lines
/// ending in LF.
class HandleOutput final : public Output {
  public:
    /// @param standardHandle STD_OUTPUT_HANDLE or STD_ERROR_HANDLE. The handle is duplicated: the
    ///        C runtime closes the original when its descriptor is redirected.
    explicit HandleOutput(DWORD standardHandle);
    ~HandleOutput() override;
    HandleOutput(const HandleOutput&) = delete;
    HandleOutput& operator=(const HandleOutput&) = delete;

    bool write(std::string_view text) override;
    std::optional<std::size_t> width() const override;
    bool takesColor() const override { return takesColor_; }

  private:
    void setUpConsole();
    bool writeToConsole(std::string_view text);
    bool writeWide(const std::wstring& wide);
    bool writeBytes(std::string_view text);

    HANDLE handle_ = nullptr;
    bool isConsole_ = false;
    bool takesColor_ = false;
    WORD originalAttributes_ = 0;
};

}  // namespace quista::cli

// The options that every command has.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace quista::cli {

enum class ColorChoice { kAuto, kAlways, kNever };

struct Options {
    bool isJson = false;
    bool hasHeaders = true;
    ColorChoice color = ColorChoice::kAuto;
    unsigned timeoutSeconds = 120;  ///< 0 waits without limit
    std::string simulatedHost;      ///< sample or MOF file; empty for the machine's own WMI

    std::optional<std::chrono::milliseconds> timeLimit() const {
        if (timeoutSeconds == 0) return std::nullopt;
        return std::chrono::seconds(timeoutSeconds);
    }
};

}  // namespace quista::cli

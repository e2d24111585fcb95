// An output that keeps what is written to it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cli/output.h"

namespace quista::test {

class TextOutput final : public cli::Output {
  public:
    bool write(std::string_view written) override {
        if (isBroken) return false;
        text += written;
        return true;
    }
    std::optional<std::size_t> width() const override { return columns; }
    bool takesColor() const override { return hasColor; }

    std::string text;
    std::optional<std::size_t> columns;
    bool hasColor = false;
    bool isBroken = false;
};

}  // namespace quista::test

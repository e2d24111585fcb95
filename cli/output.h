// Where the tool writes to.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace quista::cli {

/// A destination for UTF-8 text.
class Output {
  public:
    virtual ~Output() = default;

    /// False when not all of the text could be written.
    virtual bool write(std::string_view text) = 0;
    /// Columns of the terminal; none when it is no terminal.
    virtual std::optional<std::size_t> width() const = 0;
    /// True for a terminal that shows the tool's escape sequences as colours.
    virtual bool takesColor() const = 0;

  protected:
    Output() = default;
    Output(const Output&) = default;
    Output& operator=(const Output&) = default;
};

}  // namespace quista::cli

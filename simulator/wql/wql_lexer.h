// Splits WQL text into tokens.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quista::simulator {

enum class WqlTokenKind {
    name,     ///< identifier or keyword
    string,   ///< unescaped in `text`
    integer,  ///< `negative` and `magnitude`
    mark,     ///< * , ( ) or a comparison in `text`
    invalid,  ///< no token of the language
    end,
};

struct WqlToken {
    WqlTokenKind kind = WqlTokenKind::end;
    std::wstring text;
    bool negative = false;
    std::uint64_t magnitude = 0;
};

class WqlLexer {
  public:
    /// The text must outlive the lexer.
    explicit WqlLexer(std::wstring_view text) : rest_(text) {}

    WqlToken next();

  private:
    WqlToken readName();
    WqlToken readString();
    WqlToken readInteger();
    WqlToken readMark();

    std::wstring_view rest_;
};

/// Reads a decimal integer with an optional sign that fills the whole text.
bool readDecimal(std::wstring_view text, bool& negative, std::uint64_t& magnitude);

}  // namespace quista::simulator

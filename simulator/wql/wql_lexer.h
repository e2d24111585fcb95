// Splits WQL text into tokens.
#pragma once

#include <string>
#include <string_view>

#include "simulator/repository/text_scan.h"

namespace quista::simulator {

enum class WqlTokenKind {
    name,     ///< identifier or keyword
    string,   ///< unescaped in `text`
    integer,  ///< in `integer`
    mark,     ///< * , ( ) or a comparison in `text`
    invalid,  ///< no token of the language
    end,
};

struct WqlToken {
    WqlTokenKind kind = WqlTokenKind::end;
    std::wstring text;
    ScannedInteger integer;
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

}  // namespace quista::simulator

// Splits MOF text into tokens.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "simulator/mof/mof_failure.h"

namespace quista::simulator {

enum class MofTokenKind {
    name,         ///< identifier or keyword
    alias,        ///< $Name; `text` is without the dollar sign
    integer,      ///< `negative` and `magnitude`
    real,         ///< `real`
    string,       ///< one literal, unescaped
    character,    ///< one UTF-16 unit in `magnitude`
    punctuation,  ///< one of { } [ ] ( ) ; : , = # in `text`
    end,
};

struct MofToken {
    MofTokenKind kind = MofTokenKind::end;
    MofPosition position;
    std::wstring text;
    bool negative = false;
    std::uint64_t magnitude = 0;
    double real = 0;
};

/// Reads tokens one by one, past white space and comments. Throws MofFailure at what is no token.
class MofLexer {
  public:
    /// The text must outlive the lexer.
    MofLexer(std::wstring_view text, const std::wstring& file) : rest_(text), file_(file) {}

    MofToken next();

  private:
    wchar_t peek(std::size_t offset = 0) const;
    wchar_t take();
    [[noreturn]] void fail(MofPosition position, std::wstring reason) const;

    void skipSpaceAndComments();
    void skipBlockComment();
    void readName(MofToken& token);
    void readString(MofToken& token);
    void readCharacter(MofToken& token);
    wchar_t takeEscaped();
    wchar_t takeHexEscape(MofPosition start);
    void readNumber(MofToken& token);
    void readReal(MofToken& token, const std::wstring& digits);
    void readDigits(MofToken& token, std::wstring_view digits, unsigned base) const;

    std::wstring_view rest_;
    std::wstring file_;
    MofPosition position_;
};

/// The token as an error message names it.
std::wstring describe(const MofToken& token);

}  // namespace quista::simulator

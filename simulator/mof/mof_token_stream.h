// The tokens of a MOF text with one token of look-ahead.
#pragma once

#include <string>
#include <string_view>

#include "simulator/mof/mof_lexer.h"

namespace quista::simulator {

/// Keywords and names are compared without case. Throws MofFailure where the text does not go on as
/// demanded.
class MofTokenStream {
  public:
    /// The text must outlive the stream.
    MofTokenStream(std::wstring_view text, std::wstring file);

    const std::wstring& file() const { return file_; }
    const MofToken& peek() const { return current_; }
    bool atEnd() const { return current_.kind == MofTokenKind::end; }
    MofToken take();

    bool atMark(wchar_t mark) const;
    bool atKeyword(std::wstring_view keyword) const;
    bool acceptMark(wchar_t mark);
    bool acceptKeyword(std::wstring_view keyword);

    void expectMark(wchar_t mark);
    void expectKeyword(std::wstring_view keyword);
    /// `what` says in an error message what was expected, as in "a class name".
    MofToken expectName(std::wstring_view what);
    /// One string, or several that follow one another and count as one.
    std::wstring expectString(std::wstring_view what);
    [[noreturn]] void failExpecting(std::wstring_view what) const;
    [[noreturn]] void fail(MofPosition position, std::wstring reason) const;

  private:
    std::wstring file_;
    MofLexer lexer_;
    MofToken current_;
};

}  // namespace quista::simulator

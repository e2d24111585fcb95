#include "simulator/mof/mof_token_stream.h"

#include <utility>

#include "simulator/repository/text_case.h"

namespace quista::simulator {

MofTokenStream::MofTokenStream(std::wstring_view text, std::wstring file)
    : file_(std::move(file)), lexer_(text, file_), current_(lexer_.next()) {}

MofToken MofTokenStream::take() {
    MofToken taken = std::move(current_);
    current_ = lexer_.next();
    return taken;
}

bool MofTokenStream::atMark(wchar_t mark) const {
    return current_.kind == MofTokenKind::punctuation && current_.text.front() == mark;
}

bool MofTokenStream::atKeyword(std::wstring_view keyword) const {
    return current_.kind == MofTokenKind::name && equalNoCase(current_.text, keyword);
}

bool MofTokenStream::acceptMark(wchar_t mark) {
    if (!atMark(mark)) return false;
    take();
    return true;
}

bool MofTokenStream::acceptKeyword(std::wstring_view keyword) {
    if (!atKeyword(keyword)) return false;
    take();
    return true;
}

void MofTokenStream::expectMark(wchar_t mark) {
    if (!acceptMark(mark)) failExpecting(std::wstring(L"'") + mark + L"'");
}

void MofTokenStream::expectKeyword(std::wstring_view keyword) {
    if (!acceptKeyword(keyword)) failExpecting(keyword);
}

MofToken MofTokenStream::expectName(std::wstring_view what) {
    if (current_.kind != MofTokenKind::name) failExpecting(what);
    return take();
}

std::wstring MofTokenStream::expectString(std::wstring_view what) {
    if (current_.kind != MofTokenKind::string) failExpecting(what);
    std::wstring text;
    while (current_.kind == MofTokenKind::string) text += take().text;
    return text;
}

void MofTokenStream::failExpecting(std::wstring_view what) const {
    fail(current_.position, L"expected " + std::wstring(what) + L", found " + describe(current_));
}

void MofTokenStream::fail(MofPosition position, std::wstring reason) const {
    failAt(file_, position, std::move(reason));
}

}  // namespace quista::simulator

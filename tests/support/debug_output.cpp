#include "tests/support/debug_output.h"

#include <windows.h>

#include <string_view>

#include "tests/support/text.h"

namespace quista::test {

namespace {

// OutputDebugString raises these; a debugger would take them. The wide one comes first on newer
// systems and, once handled, is not followed by the other.
constexpr DWORD kPrintException = 0x40010006;
constexpr DWORD kPrintExceptionWide = 0x4001000A;

DebugOutputCapture* gCapture = nullptr;

/// A text without the terminator that its length counts.
template <typename Character>
std::basic_string_view<Character> textAt(const EXCEPTION_RECORD& record) {
    const auto* text = reinterpret_cast<const Character*>(record.ExceptionInformation[1]);
    const std::size_t length = record.ExceptionInformation[0];
    return {text, length == 0 ? 0 : length - 1};
}

}  // namespace

struct DebugOutputHandler {
    static LONG CALLBACK handle(EXCEPTION_POINTERS* pointers) {
        const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
        if (record.ExceptionCode == kPrintException) {
            gCapture->texts_.push_back(widen(textAt<char>(record)));
            return EXCEPTION_CONTINUE_EXECUTION;
        }
        if (record.ExceptionCode == kPrintExceptionWide) {
            gCapture->texts_.emplace_back(textAt<wchar_t>(record));
            return EXCEPTION_CONTINUE_EXECUTION;
        }
        return EXCEPTION_CONTINUE_SEARCH;
    }
};

DebugOutputCapture::DebugOutputCapture() {
    gCapture = this;
    handler_ = AddVectoredExceptionHandler(1, &DebugOutputHandler::handle);
}

DebugOutputCapture::~DebugOutputCapture() {
    RemoveVectoredExceptionHandler(handler_);
    gCapture = nullptr;
}

}  // namespace quista::test

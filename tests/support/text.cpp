#include "tests/support/text.h"

#include <windows.h>

namespace quista::test {

std::string narrow(std::wstring_view text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), length,
                                           nullptr, 0, "?", nullptr);
    std::string result(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), length, result.data(), needed,
                        "?", nullptr);
    return result;
}

std::wstring widen(std::string_view text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, result.data(), needed);
    return result;
}

}  // namespace quista::test

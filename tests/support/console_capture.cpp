#include "tests/support/console_capture.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>

#include "tests/support/work_folder.h"

namespace quista::test {

namespace {

constexpr int kStandardOutput = 1;

std::wstring makeFileName() {
    static unsigned made = 0;
    const std::wstring name =
        L"quista-console-" + std::to_wstring(_getpid()) + L"-" + std::to_wstring(++made);
    return (std::filesystem::temp_directory_path() / name).wstring();
}

}  // namespace

ConsoleCapture::ConsoleCapture() : filePath_(makeFileName()) {
    std::fflush(stdout);
    saved_ = _dup(kStandardOutput);
    const int file =
        _wopen(filePath_.c_str(), _O_CREAT | _O_TRUNC | _O_WRONLY | _O_TEXT, _S_IREAD | _S_IWRITE);
    EXPECT_TRUE(saved_ != -1 && file != -1) << "standard output cannot be captured";
    _dup2(file, kStandardOutput);
    _close(file);
}

ConsoleCapture::~ConsoleCapture() {
    restore();
}

std::string ConsoleCapture::stop() {
    std::fflush(stdout);
    const std::string written = readFile(filePath_).value_or("");
    restore();
    return written;
}

void ConsoleCapture::restore() {
    if (saved_ == -1) return;
    std::fflush(stdout);
    _dup2(saved_, kStandardOutput);
    _close(saved_);
    saved_ = -1;
    std::error_code error;
    std::filesystem::remove(filePath_, error);
}

}  // namespace quista::test

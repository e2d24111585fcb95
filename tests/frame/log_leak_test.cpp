// What ReportError leaves behind: the text of the working directory, and the brand's registry key
// when there is one. Everything else is released.
#include <windows.h>

#include <gtest/gtest.h>

#include "quista/frame.h"
#include "tests/frame/log_test.h"
#include "tests/support/process_census.h"

namespace quista::test {
namespace {

constexpr std::size_t kCalls = 20;

class LogLeakTest : public LogTest {
  protected:
    static void report(unsigned long code) {
        for (std::size_t i = 0; i < kCalls; ++i) ReportError(L"p", code);
    }
};

// Kept: the runtime's copy of the working directory is not released.
TEST_F(LogLeakTest, OneTextOfTheWorkingDirectoryStaysPerLine) {
    report(45);
    const std::size_t before = countHeapTexts(folder.path());
    report(45);
    EXPECT_EQ(countHeapTexts(folder.path()), before + kCalls);
}

TEST_F(LogLeakTest, NothingElseStaysOnTheHeap) {
    for (const unsigned long code : {45ul, 5ul, kNamelessCode}) {
        report(code);
        const std::size_t before = countHeapBlocks();
        report(code);
        EXPECT_EQ(countHeapBlocks(), before + kCalls) << code;
    }
}

TEST_F(LogLeakTest, GeneralErrorLeavesNothing) {
    report(1);
    const std::size_t before = countHeapBlocks();
    report(1);
    EXPECT_EQ(countHeapBlocks(), before);
}

// Kept: the brand's key stays open, with and without a value in it.
TEST_F(LogLeakTest, BrandsKeyStaysOpen) {
    setLogDir(folder.path(L"logs"));
    report(45);
    std::size_t before = countHandles();
    report(45);
    EXPECT_EQ(countHandles(), before + kCalls);

    machine.eraseValue(kVelmoraKey, L"LogDir");
    before = countHandles();
    report(45);
    EXPECT_EQ(countHandles(), before + kCalls);
}

TEST_F(LogLeakTest, NoHandleStaysWithoutTheKey) {
    report(45);
    const std::size_t before = countHandles();
    report(45);
    EXPECT_EQ(countHandles(), before);
}

}  // namespace
}  // namespace quista::test

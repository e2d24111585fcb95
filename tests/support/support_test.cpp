// The traps and readers must notice what they are for; a trap that never snaps proves nothing.
#include <windows.h>

#include <objbase.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "tests/support/allocation_spy.h"
#include "tests/support/console_capture.h"
#include "tests/support/debug_output.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/local_machine.h"
#include "tests/support/log_file.h"
#include "tests/support/log_names.h"
#include "tests/support/mof_object.h"
#include "tests/support/process_census.h"
#include "tests/support/program_run.h"
#include "tests/support/text.h"
#include "tests/support/windows_version.h"
#include "tests/support/work_folder.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// ---- log_file.h

std::string entry(const std::string& code, const std::string& rest) {
    return "11/16/2026 04:39:47 Error " + code + " in " + rest;
}

TEST(LogFileTest, NamedCodeGivesPlaceAndCode) {
    const auto entries = parseLog(entry("0000002D", "DSM_INITIALIZED: DSM_INIT_DONE\r\n"));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].stamp, "11/16/2026 04:39:47");
    EXPECT_EQ(entries[0].place, "DSM_INITIALIZED");
    EXPECT_EQ(entries[0].code, 45u);
    EXPECT_EQ(entries[0].message, "DSM_INIT_DONE");
}

TEST(LogFileTest, PlaceWithColonIsWhole) {
    EXPECT_THAT(linesOf(entry("80041002", "Call: Step: WBEM_E_NOT_FOUND\r\n")),
                ElementsAre(LogLine{"Call: Step", 0x80041002}));
}

TEST(LogFileTest, SystemTextIsFollowedByAnEmptyLine) {
    std::string text = narrow(systemMessage(5));
    ASSERT_TRUE(text.ends_with("\r\n"));
    text.insert(text.size() - 1, "\r");
    EXPECT_THAT(linesOf(entry("00000005", "a: " + text + "\r\n") + entry("E0000008", "b\r\n")),
                ElementsAre(LogLine{"a", 5}, LogLine{"b", 0xE0000008}));
}

TEST(LogFileTest, ForeignBytesFailTheTest) {
    EXPECT_NONFATAL_FAILURE(linesOf("rubbish\r\n"), "does not begin with an entry");
    EXPECT_NONFATAL_FAILURE(linesOf(entry("0000002D", "a: wrong\r\n")), "code's message");
    EXPECT_NONFATAL_FAILURE(linesOf(entry("E0000008", "a\n")), "without CR LF");
}

TEST(LogFileTest, TakeForgetsTheLinesItGave) {
    const WorkFolder folder;
    LogFile log;
    EXPECT_FALSE(log.exists());
    writeFile(L"MPIOlog.dat", entry("E0000008", "a\r\n"));
    EXPECT_THAT(log.take(), ElementsAre(LogLine{"a", 0xE0000008}));
    EXPECT_FALSE(log.exists());
}

// ---- allocation_spy.h

TEST(AllocationSpyTest, LiveBlocksAreSurvivors) {
    const AllocationScope scope;
    void* kept = CoTaskMemAlloc(24);
    CoTaskMemFree(CoTaskMemAlloc(32));
    EXPECT_THAT(scope.survivors(), ElementsAre(24));
    CoTaskMemFree(kept);
    EXPECT_TRUE(scope.survivors().empty());
}

TEST(AllocationSpyTest, LiveTextIsASurvivor) {
    const AllocationScope scope;
    BSTR kept = SysAllocString(L"kept");
    EXPECT_THAT(scope.survivingTexts(), ElementsAre(L"kept"));
    SysFreeString(kept);
    EXPECT_TRUE(scope.survivingTexts().empty()) << "is OANOCACHE=1 set?";
}

TEST(AllocationSpyTest, ChosenSizeFails) {
    const AllocationScope scope;
    scope->failBlocks(40, 2, 1);
    void* first = CoTaskMemAlloc(40);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(CoTaskMemAlloc(40), nullptr);
    void* third = CoTaskMemAlloc(40);
    EXPECT_NE(third, nullptr);
    EXPECT_EQ(scope->requests(40), 3u);
    CoTaskMemFree(first);
    CoTaskMemFree(third);
}

TEST(AllocationSpyTest, BlocksAreFilledOnDemand) {
    const AllocationScope scope;
    scope->fillBlocks(0x5A);
    auto* block = static_cast<unsigned char*>(CoTaskMemAlloc(10));
    EXPECT_EQ(block[9], 0x5A);
    CoTaskMemFree(block);
}

TEST(AllocationSpyTest, DISABLED_OverrunsBlock) {
    const AllocationScope scope;
    scope->guardBlocks(100);
    auto* block = static_cast<volatile unsigned char*>(CoTaskMemAlloc(4103));
    block[4102] = 1;
    std::puts("inside the block");
    std::fflush(stdout);
    block[4103] = 1;
}

TEST(AllocationSpyTest, OverrunOfGuardedBlockFaults) {
    const ProgramRun run = runTest(L"AllocationSpyTest.DISABLED_OverrunsBlock");
    EXPECT_EQ(run.exitCode, static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION)) << run.output;
    EXPECT_THAT(run.output, HasSubstr("inside the block"));
}

// ---- guarded_buffer.h

TEST(GuardedBufferTest, UntouchedBytesAreTold) {
    const GuardedBuffer buffer(9);
    EXPECT_TRUE(buffer.untouched());
    buffer.data()[8] = 0;
    EXPECT_FALSE(buffer.untouched());
    EXPECT_TRUE(buffer.untouched(0, 8));
}

TEST(GuardedBufferTest, DISABLED_OverrunsBuffer) {
    const GuardedBuffer buffer(9);
    volatile unsigned char* bytes = buffer.data();
    std::puts("buffer made");
    std::fflush(stdout);
    bytes[9] = 0;
}

TEST(GuardedBufferTest, OverrunFaults) {
    const ProgramRun run = runTest(L"GuardedBufferTest.DISABLED_OverrunsBuffer");
    EXPECT_EQ(run.exitCode, static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION)) << run.output;
    EXPECT_THAT(run.output, HasSubstr("buffer made"));
}

// ---- debug_output.h and console_capture.h

TEST(DebugOutputTest, TextsAreCollectedInOrder) {
    const DebugOutputCapture capture;
    OutputDebugStringW(L"first\n");
    OutputDebugStringW(L"");
    OutputDebugStringA("third");
    EXPECT_THAT(capture.texts(), ElementsAre(L"first\n", L"", L"third"));
}

TEST(DebugOutputTest, ExceptionsPassThrough) {
    const DebugOutputCapture capture;
    EXPECT_THROW(throw 1, int);
    EXPECT_TRUE(capture.texts().empty());
}

TEST(ConsoleCaptureTest, PrintedBytesAreCaptured) {
    ConsoleCapture capture;
    std::printf("narrow\n");
    std::wprintf(L"wide\n");
    EXPECT_EQ(capture.stop(), "narrow\r\nwide\r\n");
}

// ---- local_machine.h

TEST(LocalMachineTest, ValuesAreSeenByTheProcess) {
    LocalMachine machine;
    machine.setText(L"SOFTWARE\\Quista Test", L"Name", L"value");
    wchar_t text[20] = {};
    DWORD size = sizeof text;
    EXPECT_EQ(RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Quista Test", L"Name", RRF_RT_REG_SZ,
                           nullptr, text, &size),
              ERROR_SUCCESS);
    EXPECT_STREQ(text, L"value");
    machine.eraseValue(L"SOFTWARE\\Quista Test", L"Name");
    EXPECT_FALSE(machine.value(L"SOFTWARE\\Quista Test", L"Name", REG_SZ));
}

TEST(LocalMachineTest, MachineIsBackAtTheEnd) {
    { LocalMachine().makeKey(L"SOFTWARE\\Quista Test"); }
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Quista Test", 0, KEY_READ, &key),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft", 0, KEY_READ, &key),
              ERROR_SUCCESS);
    RegCloseKey(key);
}

// ---- process_census.h

TEST(ProcessCensusTest, OpenKeysAreHandles) {
    const std::size_t before = countHandles();
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(countHandles(), before + 1);
    RegCloseKey(key);
    EXPECT_EQ(countHandles(), before);
}

TEST(ProcessCensusTest, LiveTextsAreCounted) {
    const std::wstring text = L"a text that nothing else in the process holds";
    const std::size_t blocks = countHeapBlocks();
    wchar_t* copy = _wcsdup(text.c_str());
    EXPECT_EQ(countHeapTexts(text), 1u);
    EXPECT_EQ(countHeapBlocks(), blocks + 1);
    std::free(copy);
    EXPECT_EQ(countHeapTexts(text), 0u);
    EXPECT_EQ(countHeapBlocks(), blocks);
}

// ---- windows_version.h

TEST(WindowsVersionTest, DISABLED_PrintsVersion) {
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
#ifdef _MSC_VER
#pragma warning(suppress : 4996)
#endif
    ASSERT_TRUE(GetVersionExW(&version));
    std::printf("version %lu.%lu.\n", version.dwMajorVersion, version.dwMinorVersion);
}

TEST(WindowsVersionTest, CopyRunsUnderChosenVersion) {
    if (!canChooseWindowsVersion()) GTEST_SKIP() << "the version of Windows is given here";
    const std::pair<const wchar_t*, const char*> versions[] = {{L"win2003", "version 5.2."},
                                                               {L"vista", "version 6.0."},
                                                               {L"win7", "version 6.1."},
                                                               {L"win8", "version 6.2."}};
    for (const auto& [name, printed] : versions) {
        const ProgramRun run =
            VersionedProgram(name).runTest(L"WindowsVersionTest.DISABLED_PrintsVersion");
        EXPECT_EQ(run.exitCode, 0u);
        EXPECT_THAT(run.output, HasSubstr(printed));
    }
}

// ---- mof_object.h

TEST(MofObjectTest, ValuesAreWrittenAsMof) {
    MofObject object(L"C");
    object.text(L"Name", L"a\"b\\c").number(L"Count", -2).boolean(L"Flag", true).null(L"None");
    object.numbers(L"Bytes", {1, 2}).texts(L"Texts", {L"x", L"y"}).texts(L"Empty", {});
    object.objects(L"Inner", {MofObject(L"D").number(L"N", 1)});
    object.number(L"Count", 3).unset(L"Flag");
    EXPECT_EQ(object.toMof(),
              L"instance of C {\n"
              L"    Name = \"a\\\"b\\\\c\";\n"
              L"    Count = 3;\n"
              L"    None = NULL;\n"
              L"    Bytes = {1, 2};\n"
              L"    Texts = {\"x\", \"y\"};\n"
              L"    Empty = {};\n"
              L"    Inner = {instance of D {\n    N = 1;\n}};\n"
              L"}");
}

}  // namespace
}  // namespace quista::test

// ReportError: the form of the log's lines, which codes are logged, and with which message.
#include <windows.h>

#include <cstdio>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quista/frame.h"
#include "quista/status.h"
#include "tests/frame/log_test.h"
#include "tests/support/console_capture.h"
#include "tests/support/import_patch.h"
#include "tests/support/log_names.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

using ErrorLogTest = LogTest;

/// The log's bytes behind the 20 characters of date and time of its only line.
std::string withoutStamp(const std::string& bytes) {
    return bytes.size() < 20 ? bytes : bytes.substr(20);
}

TEST_F(ErrorLogTest, InitialisationLineHasPlaceAndName) {
    ReportError(L"DSM_INITIALIZED", 45);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error 0000002D in DSM_INITIALIZED: DSM_INIT_DONE\r\n");
}

TEST_F(ErrorLogTest, CodeWithoutMessageEndsWithThePlace) {
    ReportError(L"Some::Place(x)", kNamelessCode);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error E0000008 in Some::Place(x)\r\n");
}

TEST_F(ErrorLogTest, WmiCodeGetsItsPublishedName) {
    ReportError(L"p", 0x80041002);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error 80041002 in p: WBEM_E_NOT_FOUND\r\n");
}

TEST_F(ErrorLogTest, SystemTextKeepsItsLineBreak) {
    ASSERT_TRUE(systemMessage(5).ends_with(L"\r\n"));
    ReportError(L"p", 5);
    // The text's own CR LF and the line's LF, each LF written as CR LF.
    EXPECT_THAT(log.bytes(), EndsWith("\r\r\n\r\n"));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"p", 5}));
}

TEST_F(ErrorLogTest, SystemTextWinsOverTheLogsNames) {
    for (const unsigned long code : {15ul, 24ul, 54ul, 55ul}) {
        ASSERT_FALSE(systemMessage(code).empty());
        ReportError(L"p", code);
        const auto entries = parseLog(log.bytes());
        log.clear();
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_THAT(entries[0].message, EndsWith("\r\r\n")) << code;
    }
}

TEST_F(ErrorLogTest, EveryNameIsLoggedUnlessTheSystemHasAText) {
    unsigned named = 0;
    for (const LogName& row : kLogNames) {
        ReportError(L"p", row.code);
        const std::string bytes = log.bytes();
        log.clear();
        if (!systemMessage(row.code).empty()) continue;
        char expected[100];
        std::snprintf(expected, sizeof expected, "Error %08lX in p: %s\r\n", row.code, row.name);
        EXPECT_EQ(withoutStamp(bytes), expected);
        ++named;
    }
    EXPECT_GE(named, 71u) << "all rows but the four that are Windows errors too";
}

TEST_F(ErrorLogTest, StatusCodesWithoutALogNameHaveNone) {
    // They have names in the status table, which the log does not use.
    for (const unsigned long code : {37ul, 40ul, 43ul, 46ul, 47ul, 48ul}) {
        if (!systemMessage(code).empty()) continue;
        ReportError(L"p", code);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{"p", code}));
    }
}

TEST_F(ErrorLogTest, NeighboursOfNamedRangesHaveNoName) {
    for (const unsigned long code :
         {0x00040000ul, 0x00040009ul, 0x80041000ul, 0x8004103Cul, 0x80042000ul, 0x80042003ul}) {
        if (!systemMessage(code).empty()) continue;
        ReportError(L"p", code);
        char expected[40];
        std::snprintf(expected, sizeof expected, "Error %08lX in p\r\n", code);
        EXPECT_EQ(withoutStamp(log.bytes()), expected);
        log.clear();
    }
}

TEST_F(ErrorLogTest, EveryStatusCodeButOneIsLogged) {
    LogLines expected;
    for (unsigned long code = 0; code <= 60; ++code) {
        ReportError(L"p", code);
        if (code != DSM_ERROR) expected.push_back({"p", code});
    }
    EXPECT_EQ(log.lines(), expected);
}

// The system's inserts are not ignored, and none are given: a text that needs some counts as
// missing.
TEST_F(ErrorLogTest, SystemTextWithInsertsCountsAsMissing) {
    ASSERT_EQ(systemMessage(ERROR_BAD_EXE_FORMAT), L"");
    ReportError(L"p", ERROR_BAD_EXE_FORMAT);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error 000000C1 in p\r\n");
}

TEST_F(ErrorLogTest, GeneralErrorIsNeverLogged) {
    ConsoleCapture console;
    setLogDir(folder.path(L"logs"));
    ReportError(L"p", 1);
    EXPECT_EQ(console.stop(), "");
    EXPECT_FALSE(log.exists());
    EXPECT_FALSE(folderExists(folder.path(L"logs"))) << "nor is the log's folder made";
}

TEST_F(ErrorLogTest, NothingIsPrintedWhenTheLineIsWritten) {
    ConsoleCapture console;
    ReportError(L"p", 45);
    ReportError(L"p", 5);
    ReportError(L"p", kNamelessCode);
    EXPECT_EQ(console.stop(), "");
}

std::string stampOfNow() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    char stamp[40];
    std::snprintf(stamp, sizeof stamp, "%02d/%02d/%02d %02d:%02d:%02d", now.wMonth, now.wDay,
                  now.wYear, now.wHour, now.wMinute, now.wSecond);
    return stamp;
}

TEST_F(ErrorLogTest, StampIsTheLocalTimeWithAYearOfFourDigits) {
    const std::string before = stampOfNow();
    ReportError(L"p", 45);
    const std::string after = stampOfNow();
    const auto entries = parseLog(log.bytes());
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_TRUE(entries[0].stamp == before || entries[0].stamp == after) << entries[0].stamp;
}

TEST_F(ErrorLogTest, LinesAreAppendedAndEarlierBytesStay) {
    writeFile(L"MPIOlog.dat", "not a line of ours\r\n");
    ReportError(L"first", 45);
    const std::string one = log.bytes();
    ReportError(L"second", kNamelessCode);
    const std::string two = log.bytes();
    EXPECT_TRUE(one.starts_with("not a line of ours\r\n"));
    EXPECT_TRUE(two.starts_with(one));
    EXPECT_EQ(withoutStamp(two.substr(one.size())), "Error E0000008 in second\r\n");
}

TEST_F(ErrorLogTest, FileIsClosedAfterEveryLine) {
    ReportError(L"p", 45);
    EXPECT_TRUE(DeleteFileW(L"MPIOlog.dat"));
    ReportError(L"q", 45);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"q", 45}));
}

TEST_F(ErrorLogTest, EightBitCharactersKeepTheirForm) {
    ReportError(L"caf\u00E9 \u00DF", kNamelessCode);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error E0000008 in " + narrow(L"caf\u00E9 \u00DF\r\n"));
}

TEST_F(ErrorLogTest, CharacterWithoutEightBitFormBecomesAQuestionMark) {
    ReportError(L"LUN \u4E2D\u6587 end", kNamelessCode);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error E0000008 in LUN ?? end\r\n");
}

TEST_F(ErrorLogTest, MessageFollowsAPlaceWithoutEightBitForm) {
    ReportError(L"\u4E2D", 45);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error 0000002D in ?: DSM_INIT_DONE\r\n");
}

TEST_F(ErrorLogTest, PercentSignsInThePlaceAreText) {
    ReportError(L"100%s %n %ws", 45);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error 0000002D in 100%s %n %ws: DSM_INIT_DONE\r\n");
}

TEST_F(ErrorLogTest, LongPlaceIsWhole) {
    for (const std::size_t length : {199u, 200u, 1023u, 1024u, 4096u, 100000u}) {
        const std::wstring place(length, L'x');
        ReportError(place.c_str(), 45);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{narrow(place), 45})) << length;
    }
}

TEST_F(ErrorLogTest, EmptyAndNullPlaceLeaveALine) {
    ReportError(L"", 45);
    ReportError(nullptr, kNamelessCode);
    const auto entries = parseLog(log.bytes());
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].place, "");
    EXPECT_EQ(entries[1].code, kNamelessCode);
}

TEST_F(ErrorLogTest, UnopenableFileLeavesOneLineOnTheConsole) {
    ASSERT_TRUE(CreateDirectoryW(L"MPIOlog.dat", nullptr));
    ConsoleCapture console;
    ReportError(L"p", 45);
    EXPECT_EQ(console.stop(), "Unable to open the MPIOlog.dat file\r\n");
}

TEST_F(ErrorLogTest, WriteProtectedFileLeavesOneLineOnTheConsole) {
    writeFile(L"MPIOlog.dat", "");
    ASSERT_TRUE(SetFileAttributesW(L"MPIOlog.dat", FILE_ATTRIBUTE_READONLY));
    ConsoleCapture console;
    ReportError(L"p", 45);
    const std::string printed = console.stop();
    SetFileAttributesW(L"MPIOlog.dat", FILE_ATTRIBUTE_NORMAL);
    // A superuser's files have no protection under Wine.
    if (!log.bytes().empty()) GTEST_SKIP() << "files cannot be protected here";
    EXPECT_EQ(printed, "Unable to open the MPIOlog.dat file\r\n");
}

// ---- A system whose code page is UTF-8

UINT WINAPI utf8CodePage() {
    return CP_UTF8;
}

// As documented: UTF-8 refuses this flag and a substitute.
int WINAPI toUtf8AsDocumented(UINT, DWORD flags, const wchar_t* text, int length, char* bytes,
                              int room, const char* substitute, BOOL* wasUsed) {
    if (flags != 0 || substitute != nullptr) return 0;
    return WideCharToMultiByte(CP_UTF8, 0, text, length, bytes, room, nullptr, wasUsed);
}

TEST_F(ErrorLogTest, Utf8CodePageLosesNothing) {
    const ImportPatch codePage("GetACP", &utf8CodePage);
    const ImportPatch conversion("WideCharToMultiByte", &toUtf8AsDocumented);
    ReportError(L"place", 45);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error 0000002D in place: DSM_INIT_DONE\r\n");
    log.clear();
    std::string expected;
    for (int i = 0; i < 100; ++i) expected += "\xe4\xb8\xad";
    ReportError(std::wstring(100, L'\u4e2d').c_str(), kNamelessCode);
    EXPECT_EQ(withoutStamp(log.bytes()), "Error E0000008 in " + expected + "\r\n");
}

}  // namespace
}  // namespace quista::test

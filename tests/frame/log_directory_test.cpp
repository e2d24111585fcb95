// Where the log lies: the registry value LogDir, else the current directory.
#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quista/frame.h"
#include "tests/frame/log_test.h"
#include "tests/support/console_capture.h"
#include "tests/support/import_patch.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

class LogDirectoryTest : public LogTest {
  protected:
    /// Logs one line and expects it in `expected`, and nowhere else.
    void expectLogIn(const std::wstring& expected) {
        ConsoleCapture console;
        ReportError(L"p", 45);
        EXPECT_EQ(console.stop(), "");
        EXPECT_THAT(LogFile(expected).lines(), ElementsAre(LogLine{"p", 45}));
        EXPECT_EQ(log.exists(), expected == folder.path());
    }

    void expectLogInWorkFolder() { expectLogIn(folder.path()); }

    /// Makes folders within folders until the whole path has `length` characters.
    std::wstring makeFolderOfLength(std::size_t length) {
        std::wstring path = folder.path();
        while (path.size() < length) {
            std::size_t name = length - path.size() - 1;
            // Never leaves room for nothing but a separator.
            if (name > 50) name = name == 51 ? 49 : 50;
            path += L"\\" + std::wstring(name, L'd');
            EXPECT_TRUE(CreateDirectoryW(path.c_str(), nullptr));
        }
        EXPECT_EQ(path.size(), length);
        return path;
    }
};

TEST_F(LogDirectoryTest, NoKey_WorkingDirectory) {
    expectLogInWorkFolder();
}

BOOL WINAPI cannotReadVersion(const wchar_t*, DWORD, DWORD, void*) {
    return FALSE;
}

TEST_F(LogDirectoryTest, VersionThatCannotBeRead_WorkingDirectory) {
    ASSERT_TRUE(CreateDirectoryW(L"logs", nullptr));
    setLogDir(folder.path(L"logs"));
    const ImportPatch patch("GetFileVersionInfoW", &cannotReadVersion);
    expectLogInWorkFolder();
}

TEST_F(LogDirectoryTest, KeyWithoutLogDir_WorkingDirectory) {
    machine.makeKey(kVelmoraKey);
    expectLogInWorkFolder();
}

TEST_F(LogDirectoryTest, ExistingFolder_HoldsTheLog) {
    ASSERT_TRUE(CreateDirectoryW(L"logs", nullptr));
    setLogDir(folder.path(L"logs"));
    expectLogIn(folder.path(L"logs"));
}

TEST_F(LogDirectoryTest, MissingFolder_IsMade) {
    setLogDir(folder.path(L"logs"));
    expectLogIn(folder.path(L"logs"));
    EXPECT_TRUE(folderExists(folder.path(L"logs")));
}

TEST_F(LogDirectoryTest, RelativeFolder_IsMadeInTheWorkingDirectory) {
    setLogDir(L"logs");
    expectLogIn(folder.path(L"logs"));
}

TEST_F(LogDirectoryTest, MissingParent_OneLineOnTheConsole) {
    setLogDir(folder.path(L"missing\\logs"));
    ConsoleCapture console;
    ReportError(L"p", 45);
    EXPECT_EQ(console.stop(), "Unable to open the MPIOlog.dat file\r\n");
    EXPECT_FALSE(folderExists(folder.path(L"missing"))) << "parents are not made";
    EXPECT_FALSE(log.exists()) << "the working directory is no second choice";
}

TEST_F(LogDirectoryTest, FileInPlaceOfTheFolder_OneLineOnTheConsole) {
    writeFile(folder.path(L"logs"), "");
    setLogDir(folder.path(L"logs"));
    ConsoleCapture console;
    ReportError(L"p", 45);
    EXPECT_EQ(console.stop(), "Unable to open the MPIOlog.dat file\r\n");
}

TEST_F(LogDirectoryTest, LongestValueThatFits_IsUsed) {
    const std::wstring longest = makeFolderOfLength(199);
    setLogDir(longest);
    expectLogIn(longest);
}

TEST_F(LogDirectoryTest, ValueLongerThanTheBuffer_WorkingDirectory) {
    setLogDir(makeFolderOfLength(200));
    expectLogInWorkFolder();
}

TEST_F(LogDirectoryTest, VeryLongValue_WorkingDirectory) {
    setLogDir(std::wstring(5000, L'x'));
    expectLogInWorkFolder();
}

TEST_F(LogDirectoryTest, LongWorkingDirectory_HoldsTheLog) {
    const std::wstring deep = makeFolderOfLength(230);
    ASSERT_TRUE(SetCurrentDirectoryW(deep.c_str()));
    ReportError(L"p", 45);
    EXPECT_THAT(LogFile(deep).lines(), ElementsAre(LogLine{"p", 45}));
}

TEST_F(LogDirectoryTest, ValueWithoutTerminator_IsUsed) {
    const std::wstring logs = folder.path(L"logs");
    machine.setValue(kVelmoraKey, L"LogDir", REG_SZ, logs.data(), logs.size() * sizeof(wchar_t));
    expectLogIn(logs);
}

TEST_F(LogDirectoryTest, TwoHundredCharactersWithoutTerminator_AreNotOverrun) {
    const std::wstring deep = makeFolderOfLength(200);
    machine.setValue(kVelmoraKey, L"LogDir", REG_BINARY, deep.data(),
                     deep.size() * sizeof(wchar_t));
    expectLogIn(deep);
}

// The value's type is not looked at: variables stay as they are written, lists give their first
// text, and bytes are taken for text.
TEST_F(LogDirectoryTest, ExpandableText_IsNotExpanded) {
    const std::wstring text = L"%TEMP%";
    machine.setValue(kVelmoraKey, L"LogDir", REG_EXPAND_SZ, text.c_str(),
                     (text.size() + 1) * sizeof(wchar_t));
    expectLogIn(folder.path(L"%TEMP%"));
}

TEST_F(LogDirectoryTest, ListOfTexts_FirstIsUsed) {
    const wchar_t texts[] = L"first\0second\0";
    machine.setValue(kVelmoraKey, L"LogDir", REG_MULTI_SZ, texts, sizeof texts);
    expectLogIn(folder.path(L"first"));
}

TEST_F(LogDirectoryTest, Number_IsTakenForText) {
    machine.setNumber(kVelmoraKey, L"LogDir", 0x00420041);
    expectLogIn(folder.path(L"AB"));
}

TEST_F(LogDirectoryTest, BytesOfOddLength_AreNotOverrun) {
    machine.setValue(kVelmoraKey, L"LogDir", REG_BINARY, "A\0B\0C", 5);
    expectLogIn(folder.path(L"ABC"));
}

// An empty text is a text: the file goes to the root of the current drive.
TEST_F(LogDirectoryTest, EmptyText_RootOfTheDrive) {
    const std::wstring root = folder.path().substr(0, 2);
    ASSERT_FALSE(fileExists(root + L"\\MPIOlog.dat"));
    setLogDir(L"");
    expectLogIn(root);
    DeleteFileW((root + L"\\MPIOlog.dat").c_str());
}

TEST_F(LogDirectoryTest, OtherBrandsKey_IsNotRead) {
    machine.setText(kPelmarkKey, L"LogDir", folder.path(L"logs"));
    expectLogInWorkFolder();
    EXPECT_FALSE(folderExists(folder.path(L"logs")));
}

TEST_F(LogDirectoryTest, ValueIsReadForEveryLine) {
    setLogDir(folder.path(L"a"));
    ReportError(L"one", 45);
    setLogDir(folder.path(L"b"));
    ReportError(L"two", 45);
    machine.eraseValue(kVelmoraKey, L"LogDir");
    ReportError(L"three", 45);
    EXPECT_THAT(LogFile(folder.path(L"a")).lines(), ElementsAre(LogLine{"one", 45}));
    EXPECT_THAT(LogFile(folder.path(L"b")).lines(), ElementsAre(LogLine{"two", 45}));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{"three", 45}));
}

}  // namespace
}  // namespace quista::test

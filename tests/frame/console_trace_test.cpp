// The lines that the switch gConsoleTrace lets onto standard output. No export sets it.
#include "frame/console.h"
#include "tests/frame/log_test.h"
#include "tests/frame/session_test.h"
#include "tests/support/console_capture.h"
#include "tests/support/log_names.h"
#include "tests/support/text.h"

namespace quista::test {
namespace {

using testing::ElementsAre;

class ConsoleTraceTest : public SessionTest {
  protected:
    ConsoleTraceTest() {
        EXPECT_EQ(gConsoleTrace, 0) << "off at load";
        gConsoleTrace = 1;
    }
    ~ConsoleTraceTest() override { gConsoleTrace = 0; }

    template <typename Call>
    static std::string printedBy(Call call) {
        ConsoleCapture console;
        call();
        return console.stop();
    }
};

TEST_F(ConsoleTraceTest, NamedCode_IsPrintedWithoutTime) {
    EXPECT_EQ(printedBy([] { ReportError(L"DSM_INITIALIZED", 45); }),
              "Error 0000002D in DSM_INITIALIZED: DSM_INIT_DONE\r\n");
    EXPECT_THAT(log.lines(), ElementsAre(kInitialised));
}

TEST_F(ConsoleTraceTest, NamelessCode_IsPrintedWithoutMessage) {
    EXPECT_EQ(printedBy([] { ReportError(L"p", kNamelessCode); }), "Error E0000008 in p\r\n");
}

TEST_F(ConsoleTraceTest, SystemText_IsPrintedWithItsLineBreak) {
    std::string text = narrow(systemMessage(5));
    ASSERT_TRUE(text.ends_with("\r\n"));
    text.insert(text.size() - 1, "\r");
    EXPECT_EQ(printedBy([] { ReportError(L"p", 5); }), "Error 00000005 in p: " + text + "\r\n");
}

TEST_F(ConsoleTraceTest, GeneralError_IsNotPrinted) {
    EXPECT_EQ(printedBy([] { ReportError(L"p", 1); }), "");
}

TEST_F(ConsoleTraceTest, UnopenableFile_OnlyThatIsPrinted) {
    ASSERT_TRUE(CreateDirectoryW(L"MPIOlog.dat", nullptr));
    EXPECT_EQ(printedBy([] { ReportError(L"p", 45); }), "Unable to open the MPIOlog.dat file\r\n");
}

TEST_F(ConsoleTraceTest, CharacterWithoutEightBitForm_LosesNoLine) {
    EXPECT_EQ(printedBy([] { ReportError(L"a\u4E2Db", 45); }),
              "Error 0000002D in a?b: DSM_INIT_DONE\r\n");
}

// Kept: the number is always that of an invalid namespace, whatever the connection's result was.
TEST_F(ConsoleTraceTest, RefusedConnections_AreNamedWithAFixedNumber) {
    host.failConnect(kWmi, result(WBEM_E_ACCESS_DENIED));
    host.failConnect(kCimv2, result(WBEM_E_TRANSPORT_FAILURE));
    EXPECT_EQ(printedBy([] { DSMInitialize(0); }),
              "Error 80041003 in IWbemLocator::ConnectServer: WBEM_E_ACCESS_DENIED\r\n"
              "Namespace: root\\wmi (8004100e)\r\n"
              "Error 80041015 in IWbemLocator::ConnectServer: WBEM_E_TRANSPORT_FAILURE\r\n"
              "Namespace: root\\cimv2 (8004100e)\r\n"
              "Error 0000002D in DSM_INITIALIZED: DSM_INIT_DONE\r\n");
}

TEST_F(ConsoleTraceTest, Uninitialize_IsToldWithAndWithoutSession) {
    makeHealthy();
    openSession();
    EXPECT_EQ(printedBy([] { DSMUninitialize(); }), "WMI Uninitialized\r\n");
    EXPECT_EQ(printedBy([] { DSMUninitialize(); }), "WMI Uninitialized\r\n");
}

// ---- Formatting

TEST(ConsoleTextTest, FormatTakesWideTextInThreeSpellings) {
    EXPECT_EQ(formatText(L"%s|%ls|%ws|%d", L"a", L"b", L"c", 4), L"a|b|c|4");
}

TEST(ConsoleTextTest, FormattedTextHasNoLimit) {
    const std::wstring text(100000, L'x');
    EXPECT_EQ(formatText(L"<%s>", text.c_str()), L"<" + text + L">");
}

TEST(ConsoleTextTest, FormatOfNothingIsEmpty) {
    EXPECT_EQ(formatText(L"%s", L""), L"");
}

TEST(ConsoleTextTest, EightBitFormHasAQuestionMarkForEveryMissingCharacter) {
    EXPECT_EQ(toAnsi(L""), "");
    EXPECT_EQ(toAnsi(L"a\u00E9\u4E2D"), "a\xE9?");
    EXPECT_EQ(toAnsi(std::wstring(70000, L'\u4E2D')), std::string(70000, '?'));
}

}  // namespace
}  // namespace quista::test

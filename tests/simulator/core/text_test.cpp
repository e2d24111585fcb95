#include <gtest/gtest.h>

#include "simulator/repository/text_case.h"
#include "simulator/repository/text_scan.h"

namespace quista::test {
namespace {

using namespace quista::simulator;

TEST(TextCaseTest, ComparesWithoutCase) {
    EXPECT_TRUE(equalNoCase(L"InstanceName", L"INSTANCENAME"));
    EXPECT_FALSE(equalNoCase(L"Instance", L"InstanceName"));
    EXPECT_FALSE(equalNoCase(L"[", L"{")) << "only letters have a case";
    EXPECT_TRUE(equalNoCase(L"\u00C4\u00D8\u0394\u0416\u0404", L"\u00E4\u00F8\u03B4\u0436\u0454"));
    EXPECT_FALSE(equalNoCase(L"\u00D7", L"\u00F7"));
    EXPECT_EQ(foldCase(L"Root\\WMI_1"), L"root\\wmi_1");
}

TEST(TextCaseTest, OrdersTexts) {
    EXPECT_LT(compareNoCase(L"a", L"B"), 0);
    EXPECT_GT(compareNoCase(L"B", L"a"), 0);
    EXPECT_EQ(compareNoCase(L"Ab", L"aB"), 0);
    EXPECT_LT(compareNoCase(L"a", L"AB"), 0);
    EXPECT_LT(compareNoCase(L"", L"a"), 0);
}

TEST(TextScanTest, ReadsDecimalIntegersOf64Bits) {
    const auto magnitude = [](std::wstring_view text) { return scanDecimal(text)->magnitude; };
    EXPECT_EQ(magnitude(L"0"), 0U);
    EXPECT_EQ(magnitude(L"+007"), 7U);
    EXPECT_EQ(magnitude(L"18446744073709551615"), 18446744073709551615U);
    EXPECT_TRUE(scanDecimal(L"-5")->negative);
    EXPECT_FALSE(scanDecimal(L"5")->negative);
    for (const wchar_t* text : {L"", L"-", L"+", L"--1", L"1 ", L" 1", L"1a", L"0x1",
                                L"18446744073709551616", L"99999999999999999999999"})
        EXPECT_FALSE(scanDecimal(text));
}

}  // namespace
}  // namespace quista::test

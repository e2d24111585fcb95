// Serial numbers of Microsoft's iSCSI DSM come as hexadecimal pairs and are decoded.
#include <gtest/gtest.h>

#include "tests/mpio/mpio_test.h"
#include "tests/mpio/values.h"

namespace quista::test {
namespace {

constexpr const wchar_t* kIscsiDsm = L"Microsoft iSCSI DSM";

class SerialNumberTest : public MpioTest {
  protected:
    SerialNumberTest() {
        host.add(diskInfo({drive(L"")}));
        openSession();
    }

    /// The first `characters` characters of the field, zeros included.
    std::wstring listed(const std::wstring& serialNumber, std::size_t characters,
                        const std::wstring& dsmName = kIscsiDsm) {
        host->removeInstances(kWmi, kDiskClass);
        host.add(diskInfo({drive(serialNumber, dsmName, 6)}));
        EXPECT_EQ(DSMGetAllLunsEx(record.get()), DSM_SUCCESS);
        EXPECT_EQ(record.drive(0).NumberPaths, 6u);
        EXPECT_TRUE(log.lines().empty());
        return {record.drive(0).SerialNumber, characters};
    }
    /// The whole field as a text.
    std::wstring listed(const std::wstring& serialNumber) {
        listed(serialNumber, 0);
        return fieldText(record.drive(0).SerialNumber);
    }

    DiskRecord record{1};
};

TEST_F(SerialNumberTest, PairsBecomeCharactersAndOneQuote) {
    EXPECT_EQ(listed(L"1234567414243\""), L"ABC\"");
    EXPECT_TRUE(record.untouchedBehind(record.drive(0).SerialNumber, 5));
}

TEST_F(SerialNumberTest, PrefixIsNotLookedAt) {
    EXPECT_EQ(listed(L"\"\"4142\"414243\""), L"ABC\"");
}

TEST_F(SerialNumberTest, WhatFollowsTheQuoteIsDropped) {
    EXPECT_EQ(listed(L"xxxxxxx4142\"4344\""), L"AB\"");
}

TEST_F(SerialNumberTest, DigitsMayHaveEitherCase) {
    EXPECT_EQ(listed(L"xxxxxxx4a4A6f6F5b\""), L"JJoo[\"");
}

TEST_F(SerialNumberTest, AllPairsKeepTheirValue) {
    const wchar_t digits[] = L"0123456789abcdef";
    for (int value = 1; value < 256; ++value) {
        const std::wstring pair{digits[value / 16], digits[value % 16]};
        EXPECT_EQ(listed(L"xxxxxxx" + pair + L"\"", 2),
                  (std::wstring{static_cast<wchar_t>(value), L'"'}));
    }
}

TEST_F(SerialNumberTest, InvalidDigitsCountAsZero) {
    EXPECT_EQ(listed(L"xxxxxxx4gG1zz@`/:\"", 6), std::wstring(L"\x40\x01\0\0\0\"", 6));
}

TEST_F(SerialNumberTest, ZeroPairsAreCharactersToo) {
    EXPECT_EQ(listed(L"xxxxxxx410042\"", 4), std::wstring(L"A\0B\"", 4));
}

TEST_F(SerialNumberTest, TextMayEndWithoutQuote) {
    EXPECT_EQ(listed(L"xxxxxxx4142"), L"AB\"");
}

TEST_F(SerialNumberTest, MissingDigitCountsAsZero) {
    EXPECT_EQ(listed(L"xxxxxxx41425"), L"ABP\"");
}

TEST_F(SerialNumberTest, QuoteInsideAPairIsADigitOfNoValue) {
    EXPECT_EQ(listed(L"xxxxxxx415\"42"), L"APB\"");
    EXPECT_EQ(listed(L"xxxxxxx415\""), L"AP\"");
}

TEST_F(SerialNumberTest, NothingBehindThePrefixGivesTheQuoteAlone) {
    for (const wchar_t* serial : {L"", L"x", L"xxxxxx", L"xxxxxxx", L"xxxxxxx\"", L"xxxxxxx\"41"}) {
        EXPECT_EQ(listed(serial), L"\"") << "serial number " << serial;
    }
}

TEST_F(SerialNumberTest, LongestSerialNumberLeavesRoomForQuoteAndTerminator) {
    std::wstring text = L"xxxxxxx";
    for (int i = 0; i < 126; ++i) text += L"41";
    EXPECT_EQ(listed(text + L"\""), std::wstring(126, L'A') + L"\"");
}

TEST_F(SerialNumberTest, LongerSerialNumbersAreCut) {
    for (const int pairs : {127, 128, 129, 1000}) {
        std::wstring text = L"xxxxxxx";
        for (int i = 0; i < pairs; ++i) text += L"41";
        EXPECT_EQ(listed(text + L"\""), std::wstring(126, L'A') + L"\"") << pairs << " pairs";
        EXPECT_STREQ(record.drive(0).DsmName, kIscsiDsm);
    }
}

TEST_F(SerialNumberTest, OtherNamesLeaveTheTextAlone) {
    const std::wstring serial = L"1234567414243\"";
    for (const wchar_t* name : {L"Microsoft DSM", L"microsoft iscsi dsm", L"Microsoft iSCSI DSM ",
                                L" Microsoft iSCSI DSM", L"Microsoft iSCSI DS",
                                L"Microsoft iSCSI DSM2", L"\"Microsoft iSCSI DSM\"", L""}) {
        EXPECT_EQ(listed(serial, serial.size() + 1, name), serial + L'\0') << "DSM " << name;
    }
}

TEST_F(SerialNumberTest, OnlyTheDisksOfThatDsmAreDecoded) {
    const std::wstring serial = L"1234567414243\"";
    closeSession();
    host->removeInstances(kWmi, kDiskClass);
    host.add(diskInfo({drive(serial, L"Data KORVA DSM"), drive(serial, kIscsiDsm),
                       drive(serial, L"Microsoft DSM")}));
    openSession();
    const DiskRecord three(3);
    EXPECT_EQ(DSMGetAllLunsEx(three.get()), DSM_SUCCESS);
    EXPECT_STREQ(three.drive(0).SerialNumber, L"1234567414243\"");
    EXPECT_STREQ(three.drive(1).SerialNumber, L"ABC\"");
    EXPECT_STREQ(three.drive(2).SerialNumber, L"1234567414243\"");
}

TEST_F(SerialNumberTest, NameMayBeACharacterArray) {
    const std::wstring name = kIscsiDsm;
    host.replaceValue(kDriveClass, L"DsmName",
                      Value::characters(std::vector<SHORT>(name.begin(), name.end())));
    EXPECT_EQ(listed(L"1234567414243\""), L"ABC\"");
}

TEST_F(SerialNumberTest, ValueThatIsNoTextIsDecodedFromItsText) {
    // "Invalid Entry" from its eighth character on: " E", "nt", "ry".
    host.replaceValue(kDriveClass, L"SerialNumber", Value::number(5));
    EXPECT_EQ(listed(L"", 4), std::wstring(L"\x0E\0\0\"", 4));
}

}  // namespace
}  // namespace quista::test

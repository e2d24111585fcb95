#include "cli/values.h"

#include <gtest/gtest.h>

#include "cli/names.h"

namespace quista::cli {
namespace {

using Key = std::array<std::uint8_t, 8>;

TEST(ValuesTest, PathIdentifierHasSeveralForms) {
    for (const char* text : {"0x80000203", "0X80000203", "2147484163", "-2147483133"}) {
        EXPECT_EQ(parsePathId(text), 0x80000203u) << text;
    }
    EXPECT_EQ(parsePathId("0x101"), 0x101u);
    EXPECT_EQ(parsePathId("257"), 0x101u);
    EXPECT_EQ(parsePathId("-1"), 0xFFFFFFFFu);
}

TEST(ValuesTest, WrongPathIdentifiers) {
    for (const char* text : {"", "-", "0x", "0x100000000", "4294967296", "-2147483649", "12 ",
                             " 12", "0x-1", "--1", "+1", "0b1"}) {
        EXPECT_EQ(parsePathId(text), std::nullopt) << "'" << text << "'";
        EXPECT_NE(checkPathId(text), "");
    }
}

TEST(ValuesTest, LibraryTakesIdentifiersWithTheirSign) {
    EXPECT_EQ(widenedPathId(0x101), 0x101u);
    EXPECT_EQ(widenedPathId(0x80000203), 0xFFFFFFFF80000203u);
}

TEST(ValuesTest, PolicyByNumberOrName) {
    for (const NamedCode& policy : policyNames()) {
        EXPECT_EQ(parsePolicy(std::to_string(policy.code)), policy.code);
        EXPECT_EQ(parsePolicy(policy.name), policy.code);
    }
    EXPECT_EQ(parsePolicy("round-robin"), 2u);
    EXPECT_EQ(parsePolicy("ROUNDROBINWITHSUBSET"), 3u);
    EXPECT_EQ(parsePolicy("least_queue_depth"), 4u);
}

TEST(ValuesTest, UnknownPolicyIsToldWithTheKnownOnes) {
    for (const char* text : {"", "0", "8", "-1", "round", "2x"}) {
        EXPECT_EQ(parsePolicy(text), std::nullopt) << text;
        EXPECT_NE(checkPolicy(text).find("Round Robin (2)"), std::string::npos);
    }
}

TEST(ValuesTest, ReservationKeyIsSixteenDigits) {
    EXPECT_EQ(parseReservationKey("4b56000000005A01"), (Key{0x4B, 0x56, 0, 0, 0, 0, 0x5A, 0x01}));
    for (const char* text : {"", "4b56000000005a0", "4b56000000005a011", "4b5600000000-a01",
                             "0x4b56000000005a", "4b56 0000 0000 5a01"}) {
        EXPECT_EQ(parseReservationKey(text), std::nullopt) << text;
        EXPECT_NE(checkReservationKey(text), "");
    }
}

TEST(ValuesTest, NumberIsDecimal) {
    EXPECT_EQ(parseNumber("4294967295"), 4294967295u);
    for (const char* text : {"", "-1", "4294967296", "0x10", "1.5"}) {
        EXPECT_EQ(parseNumber(text), std::nullopt) << text;
        EXPECT_NE(checkNumber(text), "");
    }
}

}  // namespace
}  // namespace quista::cli

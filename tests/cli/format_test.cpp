#include "cli/format.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace quista::cli {
namespace {

TEST(FormatTest, SizesBelowOneKibibyteAreWholeBytes) {
    EXPECT_EQ(formatSize(0), "0 B");
    EXPECT_EQ(formatSize(1023), "1023 B");
}

TEST(FormatTest, SizesHaveBinaryUnitsAndOneDecimal) {
    EXPECT_EQ(formatSize(1024), "1.0 KiB");
    EXPECT_EQ(formatSize(214748364800), "200.0 GiB");
    EXPECT_EQ(formatSize(1649267441664), "1.5 TiB");
    EXPECT_EQ(formatSize(std::numeric_limits<std::uint64_t>::max()), "16.0 EiB");
}

TEST(FormatTest, SizeThatRoundsToThousandTwentyFourTakesTheNextUnit) {
    EXPECT_EQ(formatSize((std::uint64_t{1} << 30) - 1), "1.0 GiB");
    EXPECT_EQ(formatSize(1023 * 1024), "1023.0 KiB");
}

TEST(FormatTest, WwnIsPairsWithColons) {
    EXPECT_EQ(formatWwn({0x50, 0x0a, 0x09, 0x80, 0x86, 0x57, 0xd8, 0xff}),
              "50:0a:09:80:86:57:d8:ff");
}

TEST(FormatTest, Ipv4HasItsLowestByteFirst) {
    EXPECT_EQ(formatIpv4(0x150AA8C0), "192.168.10.21");
    EXPECT_EQ(formatIpv4(0xFFFFFFFF), "255.255.255.255");
}

TEST(FormatTest, Ipv6DropsLeadingZerosAndTheLongestRun) {
    EXPECT_EQ(formatIpv6({0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}),
              "2001:db8::1");
    EXPECT_EQ(formatIpv6({0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0xab, 0xcd}),
              "2001:db8:0:1::abcd");
}

TEST(FormatTest, Ipv6TakesTheFirstOfTwoEqualRuns) {
    EXPECT_EQ(formatIpv6({0x20, 0x01, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 1}),
              "2001::1:1:0:0:1");
}

TEST(FormatTest, LongIpv6TextIsShortened) {
    EXPECT_EQ(shortenIpv6("fd4b:5600:0010:0000:0000:0000:0000:0101"), "fd4b:5600:10::101");
    EXPECT_EQ(shortenIpv6("FD4B:5600:0010:0000:0000:0000:0000:0101"), "fd4b:5600:10::101");
    for (const char* other :
         {"", "192.168.10.101", "host", "fd4b:5600:10::101",
          "fd4b:5600:0010:0000:0000:0000:0000:01g1", "fd4b56000:010:0000:0000:0000:0000:0101",
          "fd4b:5600:0010:0000:0000:0000:0000:01 1"}) {
        EXPECT_EQ(shortenIpv6(other), other);
    }
}

TEST(FormatTest, PortalPutsBracketsRoundIpv6) {
    EXPECT_EQ(formatPortal("192.0.2.10", 3260), "192.0.2.10:3260");
    EXPECT_EQ(formatPortal("2001:db8::1", 3260), "[2001:db8::1]:3260");
}

TEST(FormatTest, Ipv6WritesASingleZeroGroupOut) {
    EXPECT_EQ(formatIpv6({0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1}),
              "2001:db8:0:1:1:1:1:1");
}

TEST(FormatTest, Ipv6AtTheEnds) {
    EXPECT_EQ(formatIpv6({}), "::");
    EXPECT_EQ(formatIpv6({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}), "::1");
    EXPECT_EQ(formatIpv6({0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}), "fe80::");
}

TEST(FormatTest, Ipv4MappedAddressHasADottedEnd) {
    EXPECT_EQ(formatIpv6({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 192, 0, 2, 1}),
              "::ffff:192.0.2.1");
}

TEST(FormatTest, ScsiAddressIsPortBusTargetLun) {
    EXPECT_EQ(formatScsiAddress({2, 0, 1, 255}), "2:0:1:255");
}

TEST(FormatTest, PathIdHasOneFormAlsoWithItsHighestBitSet) {
    EXPECT_EQ(formatPathId(0x101), "0x00000101");
    EXPECT_EQ(formatPathId(0x80000203), "0x80000203");
}

TEST(FormatTest, ReservationKeyIsSixteenDigits) {
    EXPECT_EQ(formatReservationKey({0x4b, 0x56, 0, 0, 0, 0, 0x5a, 0x01}), "4b56000000005a01");
}

TEST(FormatTest, VersionHasOneByteEach) {
    EXPECT_EQ(formatVersion(0x00090402), "9.4.2");
    EXPECT_EQ(formatVersion(0x01000000), "1.0.0.0");
}

TEST(FormatTest, CountHasItsPlural) {
    EXPECT_EQ(formatCount(0, "path"), "0 paths");
    EXPECT_EQ(formatCount(1, "path"), "1 path");
    EXPECT_EQ(formatCount(2, "LUN"), "2 LUNs");
}

}  // namespace
}  // namespace quista::cli

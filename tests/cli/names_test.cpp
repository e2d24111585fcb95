#include "cli/names.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "quista/status.h"

namespace quista::cli {
namespace {

TEST(NamesTest, EveryStatusCodeHasAName) {
    ASSERT_EQ(statusCodes().size(), 55u);
    for (std::uint32_t code = 1; code <= 55; ++code) {
        EXPECT_TRUE(nameIn(statusCodes(), code).starts_with("DSM_")) << code;
    }
    EXPECT_EQ(statusName(DSM_SUCCESS), "DSM_SUCCESS");
    EXPECT_EQ(statusName(DSM_WMI_FAILURE), "DSM_WMI_FAILURE");
}

TEST(NamesTest, TextsAreTheLibrarysByteForByte) {
    EXPECT_EQ(statusText(DSM_WMI_FAILURE), "Failure in WMI processing");
    EXPECT_EQ(statusText(DSM_ENABLE_PATH_FAILED),
              "The Execute Method for enabling the path  failed.  ");
    const auto withText =
        std::count_if(statusCodes().begin(), statusCodes().end(),
                      [](const NamedCode& row) { return !statusText(row.code).empty(); });
    EXPECT_EQ(withText, 47);
}

TEST(NamesTest, CodeWithoutTextHasNone) {
    EXPECT_EQ(statusText(DSM_REGISTRY_WRITE_FAILED), "");
    EXPECT_EQ(statusText(DSM_SUCCESS), "");
}

TEST(NamesTest, WmiCodesAreNamed) {
    EXPECT_EQ(wmiCodes().size(), 69u);
    EXPECT_EQ(statusName(0x80041010), "WBEM_E_INVALID_CLASS");
    EXPECT_EQ(statusName(0x00040004), "WBEM_S_TIMEDOUT");
    EXPECT_EQ(statusName(0x80042002), "WBEMESS_E_REGISTRATION_TOO_PRECISE");
}

TEST(NamesTest, UnknownStatusIsItsNumber) {
    EXPECT_EQ(statusName(0xE0000008), "0xe0000008");
}

TEST(NamesTest, SystemTextIsOneLine) {
    const std::string text = systemText(5);
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
    EXPECT_NE(text.back(), ' ');
    EXPECT_EQ(systemText(0xE0000008), "");
}

TEST(NamesTest, PoliciesHaveMpiosNames) {
    EXPECT_EQ(policyName(1), "Failover Only");
    EXPECT_EQ(policyName(5), "Weighted Paths");
    EXPECT_EQ(policyName(7), "Vendor Specific");
    EXPECT_EQ(policyName(0), "unknown");
    EXPECT_EQ(policyName(8), "unknown");
}

TEST(NamesTest, StatesHaveTheDriversNames) {
    EXPECT_EQ(pathStateName(1), "active");
    EXPECT_EQ(pathStateName(2), "passive");
    EXPECT_EQ(pathStateName(3), "failed");
    EXPECT_EQ(pathStateName(4), "disabled");
    EXPECT_EQ(pathStateName(255), "unknown");
    EXPECT_EQ(lunStateName(1), "offline");
    EXPECT_EQ(cfModeName(1), "takeover pair");
    EXPECT_EQ(clusterTypeName(2), "scale-out");
    EXPECT_EQ(aluaSupportName(1), "implicit");
    EXPECT_EQ(targetPortGroupStateName(1), "active/non-optimized");
}

TEST(NamesTest, ProtocolIsABitMask) {
    EXPECT_EQ(protocolName(1), "FC");
    EXPECT_EQ(protocolName(2), "iSCSI");
    EXPECT_EQ(protocolName(3), "FC+iSCSI");
    EXPECT_EQ(protocolName(0), "unknown");
    EXPECT_EQ(protocolName(4), "unknown");
}

}  // namespace
}  // namespace quista::cli

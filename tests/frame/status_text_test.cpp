// ConvertError: the message text of every status code, byte for byte.
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>

#include "quista/frame.h"
#include "quista/status.h"

namespace quista::test {
namespace {

struct Expected {
    unsigned long number;
    unsigned long status;
    const char* text;
};

constexpr const char* kUnknown = "Unknown error";

// Numbers and texts stand here once more, so that a slip in the library's own tables shows.
const Expected kExpected[] = {
    {1, DSM_ERROR, "Error"},
    {2, DSM_INVALID_PARAMETERS, "Invalid Parameters"},
    {3, DSM_BUFFER_TOO_SMALL, "Buffer Too Small"},
    {4, DSM_IO_ERROR, "I/O Error"},
    {5, DSM_MISMATCH_ERROR, "Mismatch Error"},
    {6, DSM_CANNOT_OPEN_DEVICE, "Cannot open device"},
    {7, DSM_NO_MEMORY, "Failed to allocate memory for DSM"},
    {8, DSM_CANNOT_LOAD_LIBRARY, "Cannot load library"},
    {9, DSM_NO_INFO, "No info"},
    {10, DSM_GET_SENSE_KEY, "Indicates to get Sense Key"},
    {11, DSM_DEVICE_NOT_FOUND, "Device is not found"},
    {12, DSM_PATH_NOT_FOUND, "A matching Path could not be found"},
    {13, DSM_NO_ACTION_NEEDED, "No action is needed"},
    {14, DSM_WMI_FAILURE, "Failure in WMI processing"},
    {15, DSM_WMI_PARSING_ERROR, "No data in a class; error in WMI processing"},
    {16, DSM_INVALID_STATE, "Invalid state for an operation"},
    {17, DSM_NO_LUNS, "There are NO LUNs in the system"},
    {18, DSM_WMI_OPEN_FAILED, "Failed to open WMI Object"},
    {19, DSM_PATH_NOT_PASSIVE, "Path needs to be passive for this operation"},
    {20, DSM_PATH_NOT_DISABLED, "Path needs to be disabled for this operation"},
    {21, DSM_PATH_NOT_ACTIVE, "Path needs to be active for this operation"},
    {22, DSM_WMI_NOT_SUPPORTED, "The WMI operation is not supported"},
    {23, DSM_INVALID_DSM_VERSION, "Invalid DSM Version"},
    {24, DSM_NULL_MPIO_DESCRIPTOR, "Null MPIO Descriptor"},
    {25, DSM_PATH_ID_NOT_FOUND, "A matching Path Id is not found"},
    {26, DSM_WMI_CONNECT_FAILED, "Unable to connect to WMI. Check for Access Permissions etc,."},
    {27, DSM_SERIAL_NOT_FOUND, "Path to a LUN with matching Serial Number not found"},
    {28, DSM_INVALID_DRIVE, "Invalid Drive or a MPIO Path to this Drive could not be located"},
    {29, DSM_NO_MANAGED_LUNS, "No KORVADSM Managed MPIO LUNS found."},
    {30, DSM_COM_INIT_FAILED,
     "Unable to Initialize COM. Check if WMI Service is running and if you have proper "
     "permissions"},
    {31, DSM_COM_SECURITY_FAILED,
     "Unable to set security for the process. Check for proper permissions."},
    {32, DSM_COM_SERVER_FAILED,
     "Unable to Connect to the COM Server. Check if WMI Service is running and if you have proper "
     "permissions"},
    {33, DSM_MAKE_ACTIVE_FAILED,
     "The Execute Method for making the path active failed. Verify if the Load balance policy for "
     "the LUN is Failover or Round Robin with a Subset of paths and if the path State is passive."},
    {34, DSM_MAKE_PASSIVE_FAILED,
     "The Execute Method for making the path passive failed.Verify if the Load Balance policy "
     "permits this operation."},
    {35, DSM_ENABLE_PATH_FAILED, "The Execute Method for enabling the path  failed.  "},
    {36, DSM_DISABLE_PATH_FAILED, "The Execute Method for disabling the path failed."},
    {37, DSM_SET_DEFAULT_LBP_FAILED,
     "Setting the default Load Balance Policy for the DSM failed. Check if the MPIO package is "
     "properly installed."},
    {38, DSM_NO_MPIO_PATHS, "There are no MPIO paths."},
    {39, DSM_ISCSI_CLAIM_FAILED, "The operation to have the DSM claim/disclaim iSCSI LUNS failed."},
    {40, DSM_LAST_ACTIVE_PATH,
     "The path cannot be disabled as this is the only active path available to the LUN."},
    {41, DSM_PATH_STATE_UNKNOWN, "The path state could not be obtained."},
    {42, DSM_GET_DEFAULT_LBP_FAILED, "Getting the default Load Balance Policy for the DSM failed."},
    {43, DSM_LUN_INFO_FAILED,
     "Information about the luns could not be obtained. Check if the path to the luns is "
     "available."},
    {44, DSM_HBA_API_LIBRARY_LOAD_FAILED, kUnknown},
    {45, DSM_INIT_DONE, kUnknown},
    {46, DSM_FILER_VERSION_INCOMPATIBLE,
     "The filer version is incompatible for this operation. Please verify if this is a supported "
     "filer version."},
    {47, DSM_REGISTRY_WRITE_FAILED, kUnknown},
    {48, DSM_GET_PR_KEY_FAILED,
     "Unable to get the Persistent Reservation Key. Check if the DSM is installed."},
    {49, DSM_SET_WEIGHT_FAILED,
     "The execute method for setting the weight of the path failed.Check if the Load Balance "
     "policy for the LUN is Weighted Path."},
    {50, DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE,
     "If the Load Balance Policy is Weighted Path, the paths cannot be made Active or Passive."},
    {51, DSM_ISCSI_QUERY_FAILED, kUnknown},
    {52, DSM_ISCSI_PORTAL_NOT_FOUND, kUnknown},
    {53, DSM_ISCSI_PORTAL_READ_FAILED, kUnknown},
    {54, DSM_WMI_REPAIR_SUCCESS, kUnknown},
    {55, DSM_WMI_REPAIR_FAIL, kUnknown},
};

TEST(StatusTextTest, EveryCodeHasItsNumberAndText) {
    ASSERT_EQ(std::size(kExpected), 55u);
    for (const Expected& expected : kExpected) {
        EXPECT_EQ(expected.status, expected.number);
        EXPECT_STREQ(ConvertError(expected.number), expected.text) << expected.number;
    }
}

TEST(StatusTextTest, SuccessHasNoText) {
    EXPECT_EQ(DSM_SUCCESS, 0u);
    EXPECT_STREQ(ConvertError(0), kUnknown);
}

TEST(StatusTextTest, CodesOfOthersAreUnknown) {
    for (const unsigned long code : {56ul, 0x7FFFFFFFul, 0x80041002ul, 0xFFFFFFFFul}) {
        EXPECT_STREQ(ConvertError(code), kUnknown);
    }
}

TEST(StatusTextTest, TextsAreConstant) {
    EXPECT_EQ(ConvertError(29), ConvertError(29)) << "the caller does not free the text";
    EXPECT_EQ(ConvertError(44), ConvertError(0x80041002ul));
}

TEST(StatusTextTest, FortySevenCodesHaveATextOfTheirOwn) {
    std::set<std::string> texts;
    for (unsigned long code = 0; code < 100; ++code) texts.insert(ConvertError(code));
    EXPECT_EQ(texts.size(), 47u + 1u);
}

}  // namespace
}  // namespace quista::test

// The message texts of the status codes. They are shown to users and compared by callers, so their
// irregular blanks stay as they are.
#include <windows.h>

#include "quista/frame.h"
#include "quista/status.h"

namespace {

struct StatusText {
    unsigned long code;
    const char* text;
};

constexpr StatusText kStatusTexts[] = {
    {DSM_ERROR, "Error"},
    {DSM_INVALID_PARAMETERS, "Invalid Parameters"},
    {DSM_BUFFER_TOO_SMALL, "Buffer Too Small"},
    {DSM_IO_ERROR, "I/O Error"},
    {DSM_MISMATCH_ERROR, "Mismatch Error"},
    {DSM_CANNOT_OPEN_DEVICE, "Cannot open device"},
    {DSM_NO_MEMORY, "Failed to allocate memory for DSM"},
    {DSM_CANNOT_LOAD_LIBRARY, "Cannot load library"},
    {DSM_NO_INFO, "No info"},
    {DSM_GET_SENSE_KEY, "Indicates to get Sense Key"},
    {DSM_DEVICE_NOT_FOUND, "Device is not found"},
    {DSM_PATH_NOT_FOUND, "A matching Path could not be found"},
    {DSM_NO_ACTION_NEEDED, "No action is needed"},
    {DSM_WMI_FAILURE, "Failure in WMI processing"},
    {DSM_WMI_PARSING_ERROR, "No data in a class; error in WMI processing"},
    {DSM_INVALID_STATE, "Invalid state for an operation"},
    {DSM_NO_LUNS, "There are NO LUNs in the system"},
    {DSM_WMI_OPEN_FAILED, "Failed to open WMI Object"},
    {DSM_PATH_NOT_PASSIVE, "Path needs to be passive for this operation"},
    {DSM_PATH_NOT_DISABLED, "Path needs to be disabled for this operation"},
    {DSM_PATH_NOT_ACTIVE, "Path needs to be active for this operation"},
    {DSM_WMI_NOT_SUPPORTED, "The WMI operation is not supported"},
    {DSM_INVALID_DSM_VERSION, "Invalid DSM Version"},
    {DSM_NULL_MPIO_DESCRIPTOR, "Null MPIO Descriptor"},
    {DSM_PATH_ID_NOT_FOUND, "A matching Path Id is not found"},
    {DSM_WMI_CONNECT_FAILED, "Unable to connect to WMI. Check for Access Permissions etc,."},
    {DSM_SERIAL_NOT_FOUND, "Path to a LUN with matching Serial Number not found"},
    {DSM_INVALID_DRIVE, "Invalid Drive or a MPIO Path to this Drive could not be located"},
    {DSM_NO_MANAGED_LUNS, "No KORVADSM Managed MPIO LUNS found."},
    {DSM_COM_INIT_FAILED,
     "Unable to Initialize COM. Check if WMI Service is running and if you have proper "
     "permissions"},
    {DSM_COM_SECURITY_FAILED,
     "Unable to set security for the process. Check for proper permissions."},
    {DSM_COM_SERVER_FAILED,
     "Unable to Connect to the COM Server. Check if WMI Service is running and if you have proper "
     "permissions"},
    {DSM_MAKE_ACTIVE_FAILED,
     "The Execute Method for making the path active failed. Verify if the Load balance policy for "
     "the LUN is Failover or Round Robin with a Subset of paths and if the path State is passive."},
    {DSM_MAKE_PASSIVE_FAILED,
     "The Execute Method for making the path passive failed.Verify if the Load Balance policy "
     "permits this operation."},
    {DSM_ENABLE_PATH_FAILED, "The Execute Method for enabling the path  failed.  "},
    {DSM_DISABLE_PATH_FAILED, "The Execute Method for disabling the path failed."},
    {DSM_SET_DEFAULT_LBP_FAILED,
     "Setting the default Load Balance Policy for the DSM failed. Check if the MPIO package is "
     "properly installed."},
    {DSM_NO_MPIO_PATHS, "There are no MPIO paths."},
    {DSM_ISCSI_CLAIM_FAILED, "The operation to have the DSM claim/disclaim iSCSI LUNS failed."},
    {DSM_LAST_ACTIVE_PATH,
     "The path cannot be disabled as this is the only active path available to the LUN."},
    {DSM_PATH_STATE_UNKNOWN, "The path state could not be obtained."},
    {DSM_GET_DEFAULT_LBP_FAILED, "Getting the default Load Balance Policy for the DSM failed."},
    {DSM_LUN_INFO_FAILED,
     "Information about the luns could not be obtained. Check if the path to the luns is "
     "available."},
    {DSM_FILER_VERSION_INCOMPATIBLE,
     "The filer version is incompatible for this operation. Please verify if this is a supported "
     "filer version."},
    {DSM_GET_PR_KEY_FAILED,
     "Unable to get the Persistent Reservation Key. Check if the DSM is installed."},
    {DSM_SET_WEIGHT_FAILED,
     "The execute method for setting the weight of the path failed.Check if the Load Balance "
     "policy for the LUN is Weighted Path."},
    {DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE,
     "If the Load Balance Policy is Weighted Path, the paths cannot be made Active or Passive."},
    {0, nullptr},
};

constexpr const char* kUnknownError = "Unknown error";

const char* textOf(unsigned long code) {
    // The ending row has code 0, so 0 has no text of its own.
    for (const StatusText* row = kStatusTexts; row->code != 0 && row->text != nullptr; ++row) {
        if (row->code == code) return row->text;
    }
    return kUnknownError;
}

}  // namespace

char* ConvertError(unsigned long code) {
    return const_cast<char*>(textOf(code));
}

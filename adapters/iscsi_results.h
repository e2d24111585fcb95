// What the end of an enumeration means to the iSCSI lookups.
#pragma once

#include <windows.h>

#include "quista/status.h"
#include "wmi/results.h"

namespace quista {

/// The status of an enumeration that `next` ended; its normal end keeps the status reached.
inline DWORD statusAfterLastIscsi(HRESULT next, DWORD reached) {
    switch (next) {
        case kTimedOut:
            return DSM_LUN_INFO_FAILED;
        case kEndOfEnumeration:
            return reached;
        default:
            return DSM_ISCSI_QUERY_FAILED;
    }
}

}  // namespace quista

// Records of iSCSI adapters and their portals.
#pragma once

/// Address of one iSCSI portal (embedded class ISCSI_PortalInfo).
struct _KORVADSM_ISCSI_PORTAL {
    wchar_t Address[1024];
    unsigned long Port;   ///< TCP port
    unsigned char Valid;  ///< 0 when the portal could not be read, else 1
};

/// One iSCSI initiator adapter (class MSiSCSI_HBAInformation). Allocated by the library, as is the
/// portal array; the caller frees both with CoTaskMemFree.
struct _KORVADSM_ISCSI_HBAINFO {
    unsigned long Reserved[2];  ///< left as allocated
    unsigned long PortalCount;
    wchar_t Description[1024];
    _KORVADSM_ISCSI_PORTAL* Portals;
};

// Records of iSCSI adapters and their portals.
#pragma once

/// Address of one iSCSI portal (embedded class ISCSI_PortalInfo).
struct _KORVADSM_ISCSI_PORTAL {
    /// IPAddr: dotted for IPv4, eight groups of four digits for IPv6, a host name in double quotes.
    wchar_t Address[1024];
    unsigned long Port;   ///< property Port, the TCP port
    unsigned char Valid;  ///< 0 when the portal could not be read, else 1
};

/// One iSCSI initiator adapter (class MSiSCSI_HBAInformation). Allocated by the library, as is the
/// portal array; the caller frees both with CoTaskMemFree.
struct _KORVADSM_ISCSI_HBAINFO {
    unsigned long Reserved[2];  ///< left as allocated
    unsigned long PortalCount;  ///< number of Portals
    /// VendorModel with hyphens for blanks, and the end of the instance's name:
    /// "MS-iSCSI-Initiator-0000_0".
    wchar_t Description[1024];
    _KORVADSM_ISCSI_PORTAL* Portals;  ///< MSiSCSI_PortalInfoClass.PortalInformation; may be null
};

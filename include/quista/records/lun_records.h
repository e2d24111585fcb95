// Records of the vendor DSM's view: LUNs and their paths (class KORVADSM_LUNINFO).
#pragma once

/// One path to a LUN (embedded object of the property Paths). Texts are held in double quotes.
/// Fields that a path's protocol does not fill are zero.
struct _KORVADSM_PATHINFO {
    /// Property DsmId: the path identifier that the path operations take, as its low 32 bits.
    unsigned long DsmId;
    unsigned long PathId;                 ///< property PathId
    unsigned char Reserved1[44];          ///< never written
    unsigned char PortNumber;             ///< ScsiAddress.PortNumber
    unsigned char ScsiPathId;             ///< ScsiAddress.ScsiPathId
    unsigned char TargetId;               ///< ScsiAddress.TargetId
    unsigned char Lun;                    ///< ScsiAddress.Lun
    unsigned char PathState;              ///< property PathState; 1 and 2 mean available
    unsigned char Protocol;               ///< bit 0: Fibre Channel, bit 1: iSCSI
    unsigned char Proxy;                  ///< 1 when property Proxy is true, else 0
    unsigned char PrimaryPath;            ///< 1 when property PrimaryPath is true, else 0
    unsigned long PathWeight;             ///< property PathWeight
    unsigned long ALUASupport;            ///< property ALUASupport
    unsigned long TargetPortGroupState;   ///< property TargetPortGroupState
    unsigned char Reserved2[8];           ///< never written
    unsigned char TargetFcpNodename[8];   ///< target node WWN; Fibre Channel only
    unsigned char TargetFcpPortname[8];   ///< target port WWN; Fibre Channel only
    unsigned long TargetPortalGroupId;    ///< iSCSI only
    unsigned long TargetTCPPortNumber;    ///< iSCSI only
    unsigned long TargetIPv4Address;      ///< lowest byte first; 0 when the target has IPv6
    unsigned char TargetIPv6Address[16];  ///< network order; only when the IPv4 address is 0
    wchar_t TargetAdapterName[257];       ///< Fibre Channel only
    wchar_t TargetiSCSINodeName[257];     ///< the target's IQN; iSCSI only
    wchar_t TargetiSCSIAdapterName[257];  ///< iSCSI only
    unsigned char Reserved3[42];          ///< never written
};

/// One LUN with its paths, in one block that the library allocates and the caller frees with
/// CoTaskMemFree. FilerName, KORVAVersionString and SerialNumber hold at most 65 characters; in the
/// last two a text of 65 has no terminator.
struct _KORVADSM_DISKINFO {
    wchar_t FilerName[130];           ///< property FilerName, the storage system
    wchar_t KORVAVersionString[65];   ///< property KORVAVersionString, its software
    wchar_t LunPath[257];             ///< property LunPath, in double quotes
    wchar_t SerialNumber[65];         ///< property SerialNumber
    unsigned long long LunSize;       ///< property LunSize, in bytes
    unsigned long LunState;           ///< property LunState
    unsigned char CFMode;             ///< property CFMode
    unsigned char LoadBalancePolicy;  ///< property KorvaDSMLoadBalancePolicy, low 8 bits
    unsigned long KORVAVersion;       ///< property KORVAVersion
    unsigned char ReservationKey[8];  ///< property ReservationKey, in array order
    unsigned char Reserved1;          ///< never written
    unsigned char clusterType;        ///< property clusterType
    unsigned char Reserved2[66];      ///< never written
    wchar_t InstanceName[256];        ///< property InstanceName with its backslashes doubled
    unsigned long NumberPaths;        ///< property NumberOfPaths
    _KORVADSM_PATHINFO Paths[1];      ///< one record per path
};

/// One LUN without its paths: the leading part of _KORVADSM_DISKINFO, field for field as there.
struct _KORVADSM_LUN {
    wchar_t FilerName[130];
    wchar_t KORVAVersionString[65];
    wchar_t LunPath[257];
    wchar_t SerialNumber[65];
    unsigned long long LunSize;
    unsigned long LunState;
    unsigned char CFMode;
    unsigned char LoadBalancePolicy;
    unsigned long KORVAVersion;
    unsigned char ReservationKey[8];
    unsigned char Reserved1;
    unsigned char clusterType;
    unsigned char Reserved2[66];
};

/// All LUNs of the DSM. The caller allocates it with room for as many entries as there are LUNs.
struct _KORVADSM_DISKS {
    unsigned long NumberDisks;  ///< number of entries
    _KORVADSM_LUN Disks[1];     ///< in the order of WMI
};

/// One path as the lookup by serial number reports it.
struct _DSM_PATHINFO {
    unsigned long Reserved1;             ///< never written
    unsigned long PathState;             ///< property PathState
    unsigned long Reserved2[4];          ///< never written
    unsigned long Protocol;              ///< bit 0: Fibre Channel, bit 1: iSCSI
    unsigned long Reserved3;             ///< never written
    unsigned long PrimaryPath;           ///< 1 when property PrimaryPath is true, else 0
    unsigned long Reserved4;             ///< never written
    unsigned long TargetIPv4Address;     ///< lowest byte first; 0 when the target has IPv6
    unsigned long Reserved5[4];          ///< never written
    unsigned char TargetFcpPortname[8];  ///< target port WWN
    unsigned char TargetFcpNodename[8];  ///< target node WWN
    unsigned char Proxy;                 ///< 1 for a proxy path, else 0
};

/// A LUN's policy and paths as the lookup by serial number reports them. The caller allocates it
/// with room for one entry per path.
struct _DSM_DISKINFO {
    unsigned long Reserved[99];       ///< never written
    unsigned long LoadBalancePolicy;  ///< property KorvaDSMLoadBalancePolicy
    _DSM_PATHINFO PathInfo[1];
};

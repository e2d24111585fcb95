// Records of the MPIO framework's view: controllers, disks and the paths of each disk.
#pragma once

/// One MPIO controller (embedded class MPIO_CONTROLLER_INFO). No member is wider than 32 bits.
struct _MPIO_CONTROLLER_INFO {
    unsigned long IdentifierType;    ///< property IdentifierType
    unsigned long IdentifierLength;  ///< never written; zero
    unsigned char Identifier[32];    ///< never written; zero
    unsigned long ControllerState;   ///< property ControllerState
    unsigned long Reserved;          ///< never written; zero
    /// Property AssociatedDsm, the name of the DSM that serves the controller. A name of 64
    /// characters or more has no terminator in the field.
    wchar_t AssociatedDsm[64];
};

/// The controllers that MPIO knows (class MPIO_CONTROLLER_CONFIGURATION).
struct _MPIO_CONTROLLER_CONFIGURATION {
    /// Property NumberControllers as WMI reports it; may differ from the entries filled.
    unsigned long NumberControllers;
    _MPIO_CONTROLLER_INFO ControllerInfo[65];
};

/// One disk that MPIO manages, whichever DSM owns it (embedded class MPIO_DRIVE_INFO).
struct _DSM_DRIVEINFO {
    /// Property SerialNumber as text. For a disk of the DSM "Microsoft iSCSI DSM" the characters
    /// decoded from its hexadecimal form, followed by one double quote.
    wchar_t SerialNumber[128];
    wchar_t DsmName[64];        ///< property DsmName
    unsigned long NumberPaths;  ///< property NumberPaths
};

/// The MPIO disk list (class MPIO_DISK_INFO). The caller allocates it with room for NumberDrives
/// entries, as DSMGetNumberMpioLUNs reports them.
struct _DSM_DISKS {
    unsigned long NumberDrives;  ///< property NumberDrives
    unsigned long Reserved;      ///< never written
    _DSM_DRIVEINFO DriveInfo[1];
};

/// SCSI address of a path (embedded class PDOSCSI_ADDR or SCSI_ADDR).
struct _MPIO_SCSI_ADDRESS {
    unsigned char PortNumber;
    unsigned char ScsiPathId;
    unsigned char TargetId;
    unsigned char Lun;
};

/// One path of an MPIO disk (embedded class PDO_INFORMATION).
struct _PDO_INFORMATION {
    _MPIO_SCSI_ADDRESS ScsiAddress;
    unsigned long long PathIdentifier;  ///< property PathIdentifier; of a DSM's path its PathId
    unsigned char Reserved[48];         ///< never written
};

/// One MPIO disk with its paths (class MPIO_GET_DESCRIPTOR), or a LUN of the DSM in the same form,
/// without a device name. Allocated by the library with room for NumberPdos + 1 paths; freed by the
/// caller with CoTaskMemFree.
struct _MPIO_GET_DESCRIPTOR {
    unsigned long NumberPdos;  ///< number of paths: property NumberPdos, or NumberOfPaths of a LUN
    /// Property DeviceName between double quotes. A name that fills the field has no terminator.
    wchar_t DeviceName[64];
    _PDO_INFORMATION PdoInformation[1];
};

/// The descriptors of all MPIO disks. The caller allocates it with room for one pointer per MPIO
/// disk and frees each descriptor with CoTaskMemFree.
struct _MPIO_DESCRIPTOR_LIST {
    unsigned long NumberDescriptors;
    _MPIO_GET_DESCRIPTOR* Descriptor[1];
};

/// SCSI addresses of all paths of a LUN. Allocated by the library; freed by the caller with
/// CoTaskMemFree.
struct PDO_SCSI_ADDRESS {
    unsigned long NumberPdos;
    _MPIO_SCSI_ADDRESS ScsiAddress[1];
};

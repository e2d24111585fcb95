// Versions and dates of the driver files.
#pragma once

/// File version and last-write time of one file.
struct _DRIVER_VERSION_ENTRY {
    unsigned long Major;
    unsigned long Minor;
    unsigned long Build;
    unsigned long Revision;
    char Date[128];  ///< local time, "MM/DD/YYYY hh:mm:ss"
};

/// The four files that a support engineer asks about. The caller allocates it; an entry whose file
/// could not be read is left as it was.
struct _DRIVER_VERSION {
    _DRIVER_VERSION_ENTRY Program;       ///< the calling process's executable
    _DRIVER_VERSION_ENTRY KorvaDsm;      ///< korvadsm.sys
    _DRIVER_VERSION_ENTRY Mpio;          ///< mpio.sys
    _DRIVER_VERSION_ENTRY MicrosoftDsm;  ///< msiscdsm.sys, else msdsm.sys
};

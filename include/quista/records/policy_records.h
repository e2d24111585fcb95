// Records of load-balance policies and DSM parameters.
#pragma once

/// A LUN's load-balance policy in MPIO's numbering: 1 Failover Only, 2 Round Robin, 3 Round Robin
/// with Subset, 4 Least Queue Depth, 5 Weighted Paths, 6 Least Blocks, 7 Vendor Specific.
struct _DSM_LOAD_BALANCE_TYPE {
    unsigned long Policy;
};

/// The policies that a LUN supports. Entry i belongs to element i of Supported_LB_Policies; each
/// entry is a block of its own, freed with LBPDescFree.
struct _LBP_DESCRIPTOR_LIST {
    unsigned long Count;
    unsigned long* Descriptor[7];
};

/// The DSM's event log level and its counters in MPIO's registration.
struct _QUISTA_PROPERTY_SET {
    unsigned long Reserved;         ///< neither read nor written
    unsigned long EventLogLevel;    ///< KORVADSM.EventLogLevel
    unsigned long PDORemovePeriod;  ///< DSM_COUNTERS.PDORemovePeriod, in seconds
    unsigned long RetryCount;       ///< DSM_COUNTERS.RetryCount
    unsigned long RetryInterval;    ///< DSM_COUNTERS.RetryInterval, in seconds
};

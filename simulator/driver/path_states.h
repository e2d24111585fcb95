// Which paths of a disk carry I/O: what its load-balance policy makes of the available ones.
#pragma once

#include "simulator/driver/multipath_disk.h"

namespace quista::simulator {

/// Under Fail Over one path alone is active, and it is the primary one: this path takes over from
/// whichever was.
void failOverTo(MultipathDisk& disk, DiskPath& path);

/// Fail Over moves on to another available path, if there is one; rather to one that leads to the
/// controller that owns the LUN.
void failOverFrom(MultipathDisk& disk, const DiskPath& path);

/// Gives all available paths the states that the policy wants.
void arrangePaths(MultipathDisk& disk);

/// Gives one path, just enabled, the state that the policy wants.
void joinIn(MultipathDisk& disk, DiskPath& path);

/// Lets others take over after a path was disabled, if it was the last one that carried I/O.
void standIn(MultipathDisk& disk, const DiskPath& disabled);

}  // namespace quista::simulator

// Makes hosts of any size, for load tests.
#pragma once

#include <string>

namespace quista::simulator {

/// MOF text of a host with `luns` LUNs of `pathsPerLun` paths each. It holds the class definitions
/// too and needs no file. Serial numbers, paths, SCSI addresses and instance names agree between
/// the vendor's, MPIO's and Windows' classes; identifiers of paths are unique.
///
/// All paths work; LUNs take turns with the policies 1 to 6, the paths of a LUN with Fibre Channel
/// and iSCSI over IPv4 and IPv6.
std::wstring generateHost(unsigned luns, unsigned pathsPerLun);

}  // namespace quista::simulator

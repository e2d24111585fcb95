// Whether the classes of a host tell one story.
#pragma once

#include <string>
#include <vector>

#include "simulator/repository/repository.h"

namespace quista::test {

/// Expects that the vendor's, MPIO's and Windows' classes agree about every LUN, path and SCSI
/// address, that identifiers are unique, and that texts fit their declared lengths.
void expectConsistent(const simulator::Repository& host);

/// The properties without a value, as `Class.Property`, those of embedded objects included; sorted,
/// each once.
std::vector<std::wstring> nullProperties(const simulator::Repository& host);

}  // namespace quista::test

// Writes classes, instances and whole repositories as MOF text.
#pragma once

#include <string>

#include "simulator/repository/repository.h"

namespace quista::simulator {

/// What the class itself declares, inherited members left out. Starts and ends with a line break,
/// as WMI's own texts do; lines end in a line feed.
std::wstring writeMof(const CimClass& definition);

/// The instance with all properties that differ from NULL (and those that are NULL against a
/// default). 64-bit integers are quoted, as WMI writes them.
std::wstring writeMof(const CimInstance& instance);

/// Everything: for each namespace a pragma, the classes with superclasses and embedded classes
/// first, and the instances in their order. Reading it gives an equal repository.
std::wstring writeMof(const Repository& repository);

}  // namespace quista::simulator

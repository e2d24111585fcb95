// What a class takes over from its superclass.
#pragma once

#include "simulator/repository/cim_class.h"

namespace quista::simulator {

/// Why a definition cannot be completed.
enum class InheritanceResult { ok, typeConflict, tooDeep };

/// Completes what the class itself declares by what it inherits: properties and methods of the
/// superclass come first; key and other qualifiers of a redeclared property stay in force; of the
/// superclass's own qualifiers only those marked ToSubclass. Members that name another class as the
/// one that declares them are left out first, so a completed definition can be completed anew.
/// `superclass` is null for a class without one.
InheritanceResult inherit(CimClass& definition, const CimClass* superclass);

}  // namespace quista::simulator

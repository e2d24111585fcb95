// Classes whose instances drivers publish, and what becomes of the instances when WMI loses a
// class.
#pragma once

#include <string>
#include <string_view>

#include "simulator/repository/repository.h"

namespace quista::simulator {

/// Deletes a class with its subclasses, as a damaged repository loses them. Instances of classes
/// with the qualifier WMI are the drivers', which know nothing of the loss: they are put aside, in
/// a namespace below root\simulator (those of root\wmi in root\simulator\wmi), with the classes
/// that they need, and so are part of the host's MOF text.
RepositoryStatus loseClass(Repository& repository, std::wstring_view nameSpace,
                           std::wstring_view className);

/// Gives back the instances that were put aside and whose class is there again; one that has been
/// put anew in the meantime stays as it is.
void republishInstances(Repository& repository);

}  // namespace quista::simulator

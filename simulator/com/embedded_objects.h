// The way between embedded instances and the objects in which clients hold them.
#pragma once

#include <windows.h>

#include <memory>

#include "simulator/com/pointers.h"
#include "simulator/repository/cim_instance.h"

namespace quista::simulator {

struct Host;

/// A new object for an embedded instance. Being a copy, it changes nothing in the parent.
ComOwner<IUnknown> makeEmbeddedObject(const std::shared_ptr<Host>& host, CimInstancePtr instance);

/// The instance behind a client's object as it is now; a null pointer for class objects and for
/// objects that are not the simulator's.
CimInstancePtr instanceBehind(IUnknown* object);

}  // namespace quista::simulator

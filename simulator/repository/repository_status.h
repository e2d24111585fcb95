// Outcomes of changes to the repository.
#pragma once

namespace quista::simulator {

enum class RepositoryStatus {
    ok,
    unknownNamespace,
    unknownClass,
    unknownSuperclass,
    unknownInstance,
    cyclicInheritance,
    tooManyAncestors,
    typeConflict,   ///< a property redeclares an inherited one with another type
    abstractClass,  ///< an abstract class has no instances
    noKey,          ///< the class has neither a key nor the singleton qualifier
    nullKey,        ///< a key property is NULL
    alreadyExists,
};

/// What a put may do.
enum class PutMode { createOrUpdate, createOnly, updateOnly };

}  // namespace quista::simulator

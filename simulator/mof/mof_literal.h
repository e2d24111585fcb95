// Values as MOF writes them, before it is known what type they are for.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/mof/mof_failure.h"
#include "simulator/repository/cim_instance.h"
#include "simulator/repository/cim_value.h"

namespace quista::simulator {

/// How much an embedded object, or a list of them, holds.
struct MofExtent {
    unsigned depth = 0;       ///< levels of objects within objects
    std::size_t objects = 0;  ///< objects in all

    void add(const MofExtent& other) {
        depth = std::max(depth, other.depth);
        objects += other.objects;
    }
};

struct MofLiteral {
    enum class Kind { null, boolean, integer, real, text, character, object, list };

    Kind kind = Kind::null;
    MofPosition position;
    bool truth = false;
    bool negative = false;
    std::uint64_t magnitude = 0;
    double real = 0;
    std::wstring text;
    CimInstancePtr object;
    MofExtent extent;
    bool isAlias = false;  ///< the object was named by its alias, so it may stand for a reference
    std::vector<MofLiteral> elements;
};

/// The literal as a value of the type. Throws MofFailure for `file` at the literal, or at the
/// element, that the type cannot hold.
CimValue convertLiteral(const MofLiteral& literal, const CimDeclaredType& type,
                        const std::wstring& file);

/// The literal as the value of a qualifier, whose type is the literal's own.
CimValue convertQualifierLiteral(const MofLiteral& literal, const std::wstring& file);

/// The type in the words of an error message, such as "uint8[]".
std::wstring describeType(const CimDeclaredType& type);

}  // namespace quista::simulator

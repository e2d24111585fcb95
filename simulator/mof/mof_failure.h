// How the parts of the MOF reader give up.
#pragma once

#include <string>

#include "simulator/mof/mof_reader.h"

namespace quista::simulator {

/// A place in a MOF text, counted from 1.
struct MofPosition {
    unsigned line = 1;
    unsigned column = 1;
};

/// Thrown at the first error of a text; caught where the text was handed in.
struct MofFailure {
    MofError error;
};

[[noreturn]] inline void failAt(const std::wstring& file, MofPosition position,
                                std::wstring reason) {
    throw MofFailure{{file, position.line, position.column, std::move(reason)}};
}

}  // namespace quista::simulator

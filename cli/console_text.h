// Coloured text on a console that may not understand escape sequences: its own attributes are set
// instead, as every console knows them.
#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

namespace quista::cli {

/// Text behind one of the tool's escape sequences, up to the next one.
struct ConsolePiece {
    std::string_view sequence;  ///< empty at the beginning
    std::string_view text;

    bool operator==(const ConsolePiece&) const = default;
};

/// Splits text at its escape sequences ("\x1b[32m").
std::vector<ConsolePiece> splitAtSequences(std::string_view text);

/// The console's attributes behind an escape sequence; those that it had before for one that ends a
/// colour, and for any that the tool does not write.
WORD attributesFor(std::string_view sequence, WORD original);

}  // namespace quista::cli

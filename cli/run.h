// The tool as a function, callable in the process of a test.
#pragma once

#include <string>
#include <vector>

#include "cli/process.h"

namespace quista::cli {

/// Carries out one command line.
/// @param arguments UTF-8, without the program's name
/// @return the exit status
int run(const std::vector<std::string>& arguments, const Streams& streams,
        const Process& process = thisProcess());

}  // namespace quista::cli

// Where hosts are loaded from.
#pragma once

#include <string>

namespace quista::simulator {

/// Whether a bare name ("standard") is given, which stands for a file of the project's own; every
/// other text is a file's name already.
bool isBareName(const std::wstring& fileOrName);

/// The file of a sample host that is given by its bare name. Samples lie in the folder `hosts`
/// beside the simulator.
std::wstring hostFile(const std::wstring& fileOrSample);

/// The class file that is given by its bare name ("korvadsm"), in the folder `hosts\classes`.
std::wstring classFile(const std::wstring& fileOrName);

}  // namespace quista::simulator

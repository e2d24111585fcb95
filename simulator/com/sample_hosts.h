// Where hosts are loaded from.
#pragma once

#include <string>

namespace quista::simulator {

/// The file of a sample host that is given by its bare name ("standard"); every other text is a
/// file's name already. Samples lie in the folder `hosts` beside the simulator.
std::wstring hostFile(const std::wstring& fileOrSample);

}  // namespace quista::simulator

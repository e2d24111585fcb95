// Binary values of the simulated host's registry. The host keeps them, so that they last in its
// file.
#pragma once

#include <string>
#include <vector>

#include "simulator/repository/repository.h"

namespace quista::simulator {

/// A value's bytes; empty when there is no such value.
std::vector<unsigned char> registryValue(const Repository& repository, const std::wstring& keyPath,
                                         const std::wstring& valueName);
void setRegistryValue(Repository& repository, const std::wstring& keyPath,
                      const std::wstring& valueName, const std::vector<unsigned char>& bytes);

}  // namespace quista::simulator

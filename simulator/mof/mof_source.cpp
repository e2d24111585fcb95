#include "simulator/mof/mof_source.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace quista::simulator {

std::optional<std::string> MofFileSource::read(const std::wstring& path) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    if (!file) return std::nullopt;
    std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (file.bad()) return std::nullopt;
    return bytes;
}

}  // namespace quista::simulator

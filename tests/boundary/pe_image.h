// Reads the export and import tables of a 64-bit PE file on disk.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quista::test {

class PeImage {
  public:
    /// Throws std::runtime_error when the file is no 64-bit PE file.
    explicit PeImage(const std::wstring& filePath);

    /// The name that the export table gives the module.
    std::string exportedModuleName() const;
    /// Names of the exports, in the table's order.
    std::vector<std::string> exportNames() const;
    /// Number of exports, those without a name included.
    std::uint32_t exportCount() const;
    /// Names of the modules that the image is bound to at load, delayed ones included.
    std::vector<std::string> importedModules() const;

  private:
    struct Section {
        std::uint32_t address;
        std::uint32_t size;
        std::uint32_t fileOffset;
    };

    template <typename T>
    T at(std::size_t fileOffset) const;
    std::size_t offsetOf(std::uint32_t address) const;
    std::string textAt(std::uint32_t address) const;
    std::uint32_t directory(std::size_t index) const;
    void appendModules(std::vector<std::string>& modules, std::uint32_t table,
                       std::size_t entrySize, std::size_t nameField) const;

    std::string bytes_;
    std::vector<Section> sections_;
    std::size_t directories_ = 0;
};

}  // namespace quista::test

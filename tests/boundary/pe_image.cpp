#include "tests/boundary/pe_image.h"

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "tests/support/work_folder.h"

namespace quista::test {

template <typename T>
T PeImage::at(std::size_t fileOffset) const {
    if (fileOffset > bytes_.size() || bytes_.size() - fileOffset < sizeof(T)) {
        throw std::runtime_error("PE file is cut short");
    }
    T value;
    std::memcpy(&value, bytes_.data() + fileOffset, sizeof value);
    return value;
}

PeImage::PeImage(const std::wstring& filePath) {
    auto bytes = readFile(filePath);
    if (!bytes) throw std::runtime_error("PE file cannot be read");
    bytes_ = std::move(*bytes);

    const auto dos = at<IMAGE_DOS_HEADER>(0);
    const auto headersOffset = static_cast<std::size_t>(dos.e_lfanew);
    const auto headers = at<IMAGE_NT_HEADERS64>(headersOffset);
    if (dos.e_magic != IMAGE_DOS_SIGNATURE || headers.Signature != IMAGE_NT_SIGNATURE ||
        headers.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC) {
        throw std::runtime_error("not a 64-bit PE file");
    }
    const std::size_t optional = headersOffset + offsetof(IMAGE_NT_HEADERS64, OptionalHeader);
    directories_ = optional + offsetof(IMAGE_OPTIONAL_HEADER64, DataDirectory);
    std::size_t section = optional + headers.FileHeader.SizeOfOptionalHeader;
    for (unsigned i = 0; i < headers.FileHeader.NumberOfSections; ++i) {
        const auto header = at<IMAGE_SECTION_HEADER>(section);
        sections_.push_back({header.VirtualAddress, header.SizeOfRawData, header.PointerToRawData});
        section += sizeof(IMAGE_SECTION_HEADER);
    }
}

std::size_t PeImage::offsetOf(std::uint32_t address) const {
    for (const Section& section : sections_) {
        if (address >= section.address && address - section.address < section.size) {
            return section.fileOffset + (address - section.address);
        }
    }
    throw std::runtime_error("PE address lies in no section");
}

std::string PeImage::textAt(std::uint32_t address) const {
    const std::size_t begin = offsetOf(address);
    const std::size_t end = bytes_.find('\0', begin);
    if (end == std::string::npos) throw std::runtime_error("PE text without end");
    return bytes_.substr(begin, end - begin);
}

std::uint32_t PeImage::directory(std::size_t index) const {
    return at<IMAGE_DATA_DIRECTORY>(directories_ + index * sizeof(IMAGE_DATA_DIRECTORY))
        .VirtualAddress;
}

std::string PeImage::exportedModuleName() const {
    const std::uint32_t table = directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
    return textAt(at<IMAGE_EXPORT_DIRECTORY>(offsetOf(table)).Name);
}

std::uint32_t PeImage::exportCount() const {
    const std::uint32_t table = directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
    return table == 0 ? 0 : at<IMAGE_EXPORT_DIRECTORY>(offsetOf(table)).NumberOfFunctions;
}

std::vector<std::string> PeImage::exportNames() const {
    std::vector<std::string> names;
    const std::uint32_t table = directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
    if (table == 0) return names;
    const auto exports = at<IMAGE_EXPORT_DIRECTORY>(offsetOf(table));
    const std::size_t pointers = offsetOf(exports.AddressOfNames);
    for (std::size_t i = 0; i < exports.NumberOfNames; ++i) {
        names.push_back(textAt(at<std::uint32_t>(pointers + i * sizeof(std::uint32_t))));
    }
    return names;
}

void PeImage::appendModules(std::vector<std::string>& modules, std::uint32_t table,
                            std::size_t entrySize, std::size_t nameField) const {
    if (table == 0) return;
    for (std::size_t entry = offsetOf(table);; entry += entrySize) {
        const auto name = at<std::uint32_t>(entry + nameField);
        if (name == 0) return;
        modules.push_back(textAt(name));
    }
}

std::vector<std::string> PeImage::importedModules() const {
    // An entry of the delay table: attributes, then the address of the module's name.
    constexpr std::size_t kDelayEntrySize = 32;
    constexpr std::size_t kDelayNameField = 4;
    std::vector<std::string> modules;
    appendModules(modules, directory(IMAGE_DIRECTORY_ENTRY_IMPORT), sizeof(IMAGE_IMPORT_DESCRIPTOR),
                  offsetof(IMAGE_IMPORT_DESCRIPTOR, Name));
    appendModules(modules, directory(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT), kDelayEntrySize,
                  kDelayNameField);
    return modules;
}

}  // namespace quista::test

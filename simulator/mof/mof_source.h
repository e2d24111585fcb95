// Where MOF texts come from: files, or whatever a test puts in their place.
#pragma once

#include <optional>
#include <string>

namespace quista::simulator {

/// Gives the bytes of MOF files by path.
class MofSource {
  public:
    virtual ~MofSource() = default;
    /// The bytes of the file; nothing when it cannot be read.
    virtual std::optional<std::string> read(const std::wstring& path) = 0;
};

/// Files on disk.
class MofFileSource : public MofSource {
  public:
    std::optional<std::string> read(const std::wstring& path) override;
};

}  // namespace quista::simulator

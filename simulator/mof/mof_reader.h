// Reads MOF text into a repository.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/mof/mof_source.h"
#include "simulator/repository/repository.h"

namespace quista::simulator {

/// Why a MOF text was refused, and where.
struct MofError {
    std::wstring file;    ///< file or source name
    unsigned line = 0;    ///< counted from 1; 0 when the file could not be read
    unsigned column = 0;  ///< counted from 1
    std::wstring reason;
};

struct MofClassName {
    std::wstring nameSpace;
    std::wstring className;
};

struct MofResult {
    std::optional<MofError> error;
    bool hasAutoRecover = false;        ///< whether the text holds `#pragma autorecover`
    std::vector<MofClassName> classes;  ///< those that the text declares, in its order

    bool ok() const { return !error.has_value(); }
};

/// The namespace of texts before their first `#pragma namespace`.
inline constexpr std::wstring_view kDefaultMofNamespace = L"root\\wmi";

/// Reads MOF as WMI uses it. A text is loaded as a whole or, on its first error, not at all.
/// Classes and instances that are there already are replaced; two instances of the same key in one
/// text are an error. A namespace that is named by a pragma is made when it is missing.
class MofReader {
  public:
    /// Both must outlive the reader.
    MofReader(Repository& repository, MofSource& source)
        : repository_(repository), source_(source) {}

    MofResult loadFile(const std::wstring& path,
                       std::wstring_view nameSpace = kDefaultMofNamespace);
    /// `sourceName` stands for the file in errors and is the base of relative includes.
    MofResult loadText(std::wstring_view text, const std::wstring& sourceName,
                       std::wstring_view nameSpace = kDefaultMofNamespace);

  private:
    Repository& repository_;
    MofSource& source_;
};

}  // namespace quista::simulator

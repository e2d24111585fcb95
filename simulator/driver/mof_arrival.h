// What drivers do when MOF text has been read into their host.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "simulator/repository/repository.h"

namespace quista::simulator {

/// Remembers a host before a text is read into it, and lets the drivers follow afterwards. LUNs
/// that are new to a running DSM and leave their policy or reservation key NULL get the DSM's
/// default policy and key; instances whose classes the text brought back are published again.
class MofArrival {
  public:
    explicit MofArrival(const Repository& before);
    void settle(Repository& repository) const;

  private:
    void adopt(Repository& repository, const CimInstance& lun) const;

    std::optional<CimInstance> dsm_;
    std::set<std::wstring> knownLuns_;  ///< folded instance names
};

}  // namespace quista::simulator

// An adapter's FCP target mapping, of whatever size.
#pragma once

#include <cstdint>
#include <memory>

#include "adapters/hba_api.h"
#include "adapters/hba_api_wrapper.h"

namespace quista {

/// Fetches the mapping of an adapter: first with room for one entry, then for as many as there are.
class TargetMapping {
  public:
    /// @return the status of the last call
    hba::Status fetch(const HBAAPIWrapper& api, hba::Handle adapter);

    /// The number of entries that the API reports.
    std::uint32_t reportedEntries() const { return current().NumberOfEntries; }
    /// Those of them that there was room for.
    std::uint32_t entryCount() const;
    const hba::ScsiId& entry(std::uint32_t index) const {
        return current().entry[index].ScsiIdentifier;
    }

  private:
    struct ByteDeleter {
        void operator()(hba::FcpTargetMapping* mapping) const {
            ::operator delete(static_cast<void*>(mapping));
        }
    };

    const hba::FcpTargetMapping& current() const { return larger_ != nullptr ? *larger_ : single_; }
    hba::Status fetchOnce(const HBAAPIWrapper& api, hba::Handle adapter);
    hba::Status fetchLarger(const HBAAPIWrapper& api, hba::Handle adapter);
    bool allocateLarger();

    hba::FcpTargetMapping single_{};
    std::unique_ptr<hba::FcpTargetMapping, ByteDeleter> larger_;
    std::uint32_t wanted_ = 0;  ///< entries that the API has
    std::uint64_t room_ = 1;    ///< entries that there is room for
};

}  // namespace quista

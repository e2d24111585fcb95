#include "adapters/target_mapping.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#include "adapters/retry.h"

namespace quista {

namespace {

// Room for targets that appear between the two calls.
constexpr std::uint64_t kSpareEntries = 50;

}  // namespace

hba::Status TargetMapping::fetch(const HBAAPIWrapper& api, hba::Handle adapter) {
    return retryWhileStale([&] {
        api.refreshInformation(adapter);
        return larger_ != nullptr ? fetchLarger(api, adapter) : fetchOnce(api, adapter);
    });
}

hba::Status TargetMapping::fetchOnce(const HBAAPIWrapper& api, hba::Handle adapter) {
    single_.NumberOfEntries = 1;
    const hba::Status status = api.fcpTargetMapping(adapter, &single_);
    if (status != hba::kMoreData) return status;
    wanted_ = single_.NumberOfEntries;
    // Without memory the mapping stays out of reach, and the answer stands.
    return allocateLarger() ? fetchLarger(api, adapter) : hba::kMoreData;
}

hba::Status TargetMapping::fetchLarger(const HBAAPIWrapper& api, hba::Handle adapter) {
    larger_->NumberOfEntries = wanted_;
    return api.fcpTargetMapping(adapter, larger_.get());
}

bool TargetMapping::allocateLarger() {
    const std::uint64_t room = wanted_ + kSpareEntries;
    const std::size_t size = offsetof(hba::FcpTargetMapping, entry) +
                             static_cast<std::size_t>(room) * sizeof(hba::FcpScsiEntry);
    void* block = ::operator new(size, std::nothrow);
    if (block == nullptr) return false;
    std::memset(block, 0, size);
    larger_.reset(static_cast<hba::FcpTargetMapping*>(block));
    room_ = room;
    return true;
}

std::uint32_t TargetMapping::entryCount() const {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(reportedEntries(), room_));
}

}  // namespace quista

// Counts the simulator's COM objects that clients keep alive, by kind.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

#include "simulator/simulator.h"

namespace quista::simulator {

enum class ObjectKind : std::size_t { kLocator, kServices, kEnumerator, kObject, kCompiler };
inline constexpr std::size_t kObjectKinds = 5;

class LiveLedger {
  public:
    void born(ObjectKind kind) noexcept { ++counts_[static_cast<std::size_t>(kind)]; }
    void died(ObjectKind kind) noexcept { --counts_[static_cast<std::size_t>(kind)]; }

    LiveObjects counts() const noexcept {
        return {of(ObjectKind::kLocator), of(ObjectKind::kServices), of(ObjectKind::kEnumerator),
                of(ObjectKind::kObject), of(ObjectKind::kCompiler)};
    }

  private:
    unsigned of(ObjectKind kind) const noexcept { return counts_[static_cast<std::size_t>(kind)]; }

    // Clients may release from other threads than the one that runs the simulator.
    std::array<std::atomic<unsigned>, kObjectKinds> counts_{};
};

}  // namespace quista::simulator

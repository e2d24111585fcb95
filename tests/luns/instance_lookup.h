// One call of KORVA_GetInstance_for_Serial.
#pragma once

#include <string>
#include <vector>

#include "tests/luns/luns_test.h"
#include "tests/support/guarded_buffer.h"

namespace quista::test {

/// Bytes of a descriptor with room for `paths` + 1 entries.
constexpr std::size_t descriptorBlockSize(std::size_t paths) {
    return 200 + 64 * paths;
}

/// The caller's buffers, each ending at a guard page, and what the lookup left in them.
class InstanceLookup {
  public:
    explicit InstanceLookup(std::size_t paths) : diskInfo_(400 + 80 * paths) {}

    unsigned long run(std::wstring serial) { return run(serial, diskInfo()); }
    unsigned long runWithoutDiskInfo(std::wstring serial) { return run(serial, nullptr); }

    std::wstring name() const { return name_.as<wchar_t>(); }
    bool nameUntouched() const { return name_.untouched(); }
    unsigned long policy() const { return policy_.as<_DSM_LOAD_BALANCE_TYPE>()->Policy; }
    bool policyUntouched() const { return policy_.untouched(); }
    const _MPIO_GET_DESCRIPTOR* descriptor() const { return descriptor_.get(); }
    _DSM_DISKINFO* diskInfo() const { return diskInfo_.as<_DSM_DISKINFO>(); }
    const _DSM_PATHINFO& path(std::size_t index) const { return diskInfo()->PathInfo[index]; }
    bool diskInfoUntouched() const { return diskInfo_.untouched(); }
    bool diskInfoUntouched(std::size_t offset, std::size_t length) const {
        return diskInfo_.untouched(offset, length);
    }

  private:
    unsigned long run(std::wstring& serial, _DSM_DISKINFO* diskInfo);

    GuardedBuffer name_{256 * sizeof(wchar_t)};
    GuardedBuffer policy_{sizeof(_DSM_LOAD_BALANCE_TYPE)};
    GuardedBuffer diskInfo_;
    TaskBlock<_MPIO_GET_DESCRIPTOR> descriptor_;
};

/// The reads of a lookup whose LUN has that many paths.
std::vector<std::string> lookupReads(std::size_t paths);

}  // namespace quista::test

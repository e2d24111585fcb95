// What the tests of the list of iSCSI adapters share: the list, and the host that it is read from.
#pragma once

#include <objbase.h>

#include "tests/adapters/iscsi_wmi_test.h"

namespace quista::test {

/// Sizes of the blocks that the library allocates.
inline constexpr std::size_t kRecordBlock = 2072;
inline constexpr std::size_t kPortalBlock = 2056;

inline constexpr const wchar_t* kSoftwareInstance = L"ROOT\\ISCSIPRT\\0000_0";

/// The characters of a field up to its terminator or its end.
template <std::size_t Size>
std::wstring fieldText(const wchar_t (&field)[Size]) {
    return {field, wcsnlen(field, Size)};
}

/// A list of adapters and its records, freed as their caller does.
class AdapterMap {
  public:
    AdapterMap() = default;
    ~AdapterMap();
    AdapterMap(const AdapterMap&) = delete;
    AdapterMap& operator=(const AdapterMap&) = delete;

    /// Reads the adapters of the host into the list, behind those that it holds.
    unsigned long read() { return KORVADSMGetiSCSIAdapterIndexMap(list_); }

    bool exists() const { return list_ != nullptr; }
    std::size_t size() const { return list_ == nullptr ? 0 : list_->size(); }
    const _KORVADSM_ISCSI_HBAINFO& at(std::size_t index) const;
    /// The descriptions of the adapters.
    std::vector<std::wstring> descriptions() const;
    void clear();

  private:
    std::list<_KORVADSM_ISCSI_HBAINFO*>* list_ = nullptr;
};

class IscsiAdapterMapTest : public IscsiWmiTest {
  protected:
    IscsiAdapterMapTest() = default;

    /// Replaces what the host holds by these instances and opens the session.
    void openWith(const std::vector<MofObject>& instances);

    AdapterMap adapters;
};

}  // namespace quista::test

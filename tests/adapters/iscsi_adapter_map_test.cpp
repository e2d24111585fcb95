#include "tests/adapters/iscsi_adapter_map_test.h"

#include <iterator>

namespace quista::test {

AdapterMap::~AdapterMap() {
    clear();
    delete list_;
}

const _KORVADSM_ISCSI_HBAINFO& AdapterMap::at(std::size_t index) const {
    return **std::next(list_->begin(), static_cast<std::ptrdiff_t>(index));
}

std::vector<std::wstring> AdapterMap::descriptions() const {
    std::vector<std::wstring> texts;
    for (std::size_t i = 0; i < size(); ++i) texts.push_back(fieldText(at(i).Description));
    return texts;
}

void AdapterMap::clear() {
    if (list_ == nullptr) return;
    for (_KORVADSM_ISCSI_HBAINFO* record : *list_) {
        CoTaskMemFree(record->Portals);
        CoTaskMemFree(record);
    }
    list_->clear();
}

void IscsiAdapterMapTest::openWith(const std::vector<MofObject>& instances) {
    closeSession();
    adapters.clear();
    host->clear();
    host->clearFaults();
    host.loadClasses(L"iscsi");
    for (const MofObject& instance : instances) host.add(instance);
    openSession();
}

}  // namespace quista::test

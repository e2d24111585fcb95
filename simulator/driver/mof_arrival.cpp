#include "simulator/driver/mof_arrival.h"

#include <vector>

#include "simulator/driver/class_names.h"
#include "simulator/driver/instance_values.h"
#include "simulator/driver/multipath_disk.h"
#include "simulator/driver/path_states.h"
#include "simulator/driver/published_classes.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

constexpr wchar_t kReservationKey[] = L"ReservationKey";

std::wstring nameOf(const CimInstance& lun) {
    return textOf(lun, L"InstanceName").value_or(L"");
}

bool isNull(const CimInstance& instance, std::wstring_view property) {
    const CimValue* value = instance.find(property);
    return value != nullptr && value->isNull();
}

void giveKey(Repository& repository, CimInstance lun, const CimInstance& dsm) {
    const CimValue* key = dsm.find(kReservationKey);
    if (key == nullptr || lun.set(kReservationKey, *key) != CimInstance::SetResult::done) return;
    repository.putInstance(kDriverNamespace, lun);
}

void givePolicy(Repository& repository, const std::wstring& lunName, std::uint64_t policy) {
    MultipathDisk disk(repository, kDriverNamespace, lunName);
    disk.setPolicy(static_cast<LoadBalancePolicy>(policy));
    arrangePaths(disk);
    disk.store();
}

}  // namespace

MofArrival::MofArrival(const Repository& before) {
    const std::vector<CimInstancePtr> dsms = before.instances(kDriverNamespace, kDsmClass);
    if (dsms.empty()) return;
    dsm_ = *dsms.front();
    for (const CimInstancePtr& lun : before.instances(kDriverNamespace, kLunClass)) {
        knownLuns_.insert(foldCase(nameOf(*lun)));
    }
}

void MofArrival::adopt(Repository& repository, const CimInstance& lun) const {
    if (isNull(lun, kReservationKey)) giveKey(repository, lun, *dsm_);
    const std::optional<std::uint64_t> policy = numberOf(*dsm_, L"DefaultLoadBalancePolicy");
    if (policy && isNull(lun, L"KorvaDSMLoadBalancePolicy")) {
        givePolicy(repository, nameOf(lun), *policy);
    }
}

void MofArrival::settle(Repository& repository) const {
    if (dsm_) {
        for (const CimInstancePtr& lun : repository.instances(kDriverNamespace, kLunClass)) {
            if (!knownLuns_.contains(foldCase(nameOf(*lun)))) adopt(repository, *lun);
        }
    }
    republishInstances(repository);
}

}  // namespace quista::simulator

#include "simulator/driver/multipath_disk.h"

#include <algorithm>
#include <utility>

#include "simulator/driver/class_names.h"
#include "simulator/driver/instance_values.h"

namespace quista::simulator {
namespace {

constexpr std::uint64_t kLunOnline = 0;
constexpr std::uint64_t kLunUnreachable = 2;

std::optional<std::uint64_t> read(const CimInstance* object, std::wstring_view property) {
    return object != nullptr ? numberOf(*object, property) : std::nullopt;
}

void write(CimInstance* object, std::wstring_view property, std::uint64_t number) {
    if (object != nullptr) setNumber(*object, property, number);
}

/// The object of a list that has this path identifier; a null pointer when none has.
CimInstance* findPath(std::vector<CimInstance>& list, std::wstring_view property,
                      std::optional<std::uint64_t> pathId) {
    if (!pathId) return nullptr;
    const auto found = std::ranges::find_if(
        list, [&](const CimInstance& path) { return numberOf(path, property) == pathId; });
    return found == list.end() ? nullptr : &*found;
}

DiskPath* found(std::vector<DiskPath>& paths, std::vector<DiskPath>::iterator position) {
    return position == paths.end() ? nullptr : &*position;
}

}  // namespace

std::optional<std::uint32_t> DiskPath::dsmId() const {
    const std::optional<std::uint64_t> number = read(vendor_, L"DsmId");
    if (!number) return std::nullopt;
    return static_cast<std::uint32_t>(*number);
}

std::optional<std::uint64_t> DiskPath::pathId() const {
    return vendor_ != nullptr ? read(vendor_, L"PathId") : read(policy_, L"DsmPathId");
}

PathState DiskPath::state() const {
    return static_cast<PathState>(read(vendor_, L"PathState").value_or(0));
}

bool DiskPath::isAvailable() const {
    return state() == PathState::active || state() == PathState::passive;
}

bool DiskPath::isProxy() const {
    return read(vendor_, L"Proxy").value_or(0) != 0;
}

bool DiskPath::isPrimary() const {
    return read(vendor_ != nullptr ? vendor_ : policy_, L"PrimaryPath").value_or(0) != 0;
}

std::uint64_t DiskPath::weight() const {
    return read(vendor_ != nullptr ? vendor_ : policy_, L"PathWeight").value_or(0);
}

void DiskPath::setState(PathState state) {
    write(vendor_, L"PathState", static_cast<std::uint64_t>(state));
    write(device_, L"DeviceState", static_cast<std::uint64_t>(state));
}

void DiskPath::setPrimary(bool isPrimary) {
    write(vendor_, L"PrimaryPath", isPrimary ? 1 : 0);
    write(policy_, L"PrimaryPath", isPrimary ? 1 : 0);
}

void DiskPath::setWeight(std::uint64_t weight) {
    write(vendor_, L"PathWeight", weight);
    write(policy_, L"PathWeight", weight);
}

MultipathDisk::MultipathDisk(Repository& repository, std::wstring nameSpace,
                             const std::wstring& instanceName)
    : repository_(repository), nameSpace_(std::move(nameSpace)), instanceName_(instanceName) {
    readLists();
    joinPaths();
    wasReachable_ = isReachable();
}

std::optional<CimInstance> MultipathDisk::find(const wchar_t* className) const {
    const CimInstancePtr instance = findByName(repository_, nameSpace_, className, instanceName_);
    if (instance == nullptr) return std::nullopt;
    return *instance;
}

void MultipathDisk::readLists() {
    lun_ = find(kLunClass);
    descriptor_ = find(kDescriptorClass);
    policyQuery_ = find(kPolicyClass);
    if (policyQuery_) policyObject_ = objectOf(*policyQuery_, L"LoadBalancePolicy");
    if (lun_) vendorPaths_ = objectsOf(*lun_, L"Paths");
    if (descriptor_) devices_ = objectsOf(*descriptor_, L"PdoInformation");
    if (policyObject_) policyPaths_ = objectsOf(*policyObject_, L"DSM_Paths");
}

void MultipathDisk::joinPaths() {
    if (lun_) {
        for (CimInstance& path : vendorPaths_) {
            const std::optional<std::uint64_t> pathId = numberOf(path, L"PathId");
            paths_.emplace_back(&path, findPath(devices_, L"PathIdentifier", pathId),
                                findPath(policyPaths_, L"DsmPathId", pathId));
        }
        return;
    }
    for (CimInstance& path : policyPaths_) {
        const std::optional<std::uint64_t> pathId = numberOf(path, L"DsmPathId");
        paths_.emplace_back(nullptr, findPath(devices_, L"PathIdentifier", pathId), &path);
    }
}

DiskPath* MultipathDisk::findByDsmId(std::uint32_t dsmId) {
    return found(paths_, std::ranges::find_if(
                             paths_, [&](const DiskPath& path) { return path.dsmId() == dsmId; }));
}

DiskPath* MultipathDisk::findByPathId(std::uint64_t pathId) {
    return found(paths_, std::ranges::find_if(paths_, [&](const DiskPath& path) {
                     return path.pathId() == pathId;
                 }));
}

LoadBalancePolicy MultipathDisk::policy() const {
    std::optional<std::uint64_t> number;
    if (lun_) {
        number = numberOf(*lun_, L"KorvaDSMLoadBalancePolicy");
    } else if (policyObject_) {
        number = numberOf(*policyObject_, L"LoadBalancePolicy");
    }
    return static_cast<LoadBalancePolicy>(number.value_or(0));
}

void MultipathDisk::setPolicy(LoadBalancePolicy policy) {
    const auto number = static_cast<std::uint64_t>(policy);
    if (lun_) setNumber(*lun_, L"KorvaDSMLoadBalancePolicy", number);
    if (policyObject_) setNumber(*policyObject_, L"LoadBalancePolicy", number);
}

bool MultipathDisk::supports(LoadBalancePolicy policy) const {
    const std::optional<CimInstance> list = find(kSupportedPoliciesClass);
    if (!list) return true;
    const std::vector<CimInstance> supported = objectsOf(*list, L"Supported_LB_Policies");
    return std::ranges::any_of(supported, [&](const CimInstance& entry) {
        return numberOf(entry, L"LoadBalancePolicy") == static_cast<std::uint64_t>(policy);
    });
}

bool MultipathDisk::isReachable() const {
    return std::ranges::any_of(paths_, &DiskPath::isAvailable);
}

void MultipathDisk::followReachability() {
    if (!lun_ || isReachable() == wasReachable_) return;
    const std::uint64_t before = wasReachable_ ? kLunOnline : kLunUnreachable;
    const std::uint64_t after = wasReachable_ ? kLunUnreachable : kLunOnline;
    if (numberOf(*lun_, L"LunState") == before) setNumber(*lun_, L"LunState", after);
    wasReachable_ = isReachable();
}

void MultipathDisk::store() {
    followReachability();
    if (lun_) {
        setObjects(*lun_, L"Paths", vendorPaths_);
        repository_.putInstance(nameSpace_, *lun_);
    }
    if (descriptor_) {
        setObjects(*descriptor_, L"PdoInformation", devices_);
        repository_.putInstance(nameSpace_, *descriptor_);
    }
    if (policyObject_) {
        setObjects(*policyObject_, L"DSM_Paths", policyPaths_);
        policyQuery_->set(L"LoadBalancePolicy", CimValue::ofObject(*policyObject_));
        repository_.putInstance(nameSpace_, *policyQuery_);
    }
}

}  // namespace quista::simulator

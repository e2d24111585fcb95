// One multipath disk in all the classes that describe it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/repository/cim_instance.h"
#include "simulator/repository/repository.h"

namespace quista::simulator {

/// In the numbers of KORVADSM_PATHINFO.PathState and PDO_INFORMATION.DeviceState.
enum class PathState : std::uint64_t {
    unknown = 0,  ///< NULL, or no number
    active = 1,
    passive = 2,
    failed = 3,
    disabled = 4,
};

/// In MPIO's numbers.
enum class LoadBalancePolicy : std::uint64_t {
    unknown = 0,  ///< NULL, or no number
    failOverOnly = 1,
    roundRobin = 2,
    roundRobinWithSubset = 3,
    leastQueueDepth = 4,
    weightedPaths = 5,
    leastBlocks = 6,
    vendorSpecific = 7,
};

/// One path as the lists of vendor and MPIO have it, which know each other by MPIO's path
/// identifier. A null pointer stands where a list does not have the path; changes go to all lists
/// that do.
class DiskPath {
  public:
    /// KORVADSM_PATHINFO, PDO_INFORMATION and MPIO_DSM_Path.
    DiskPath(CimInstance* vendor, CimInstance* device, CimInstance* policy)
        : vendor_(vendor), device_(device), policy_(policy) {}

    std::optional<std::uint32_t> dsmId() const;
    std::optional<std::uint64_t> pathId() const;
    /// As the vendor knows it: what DeviceState means on disks of other DSMs is theirs.
    PathState state() const;
    bool isAvailable() const;
    bool isProxy() const;
    bool isPrimary() const;
    std::uint64_t weight() const;

    void setState(PathState state);
    void setPrimary(bool isPrimary);
    void setWeight(std::uint64_t weight);

  private:
    CimInstance* vendor_;
    CimInstance* device_;
    CimInstance* policy_;
};

/// The disk as it is when it is looked up; changes reach the repository with `store`. Classes and
/// instances that the host does not have are passed over.
class MultipathDisk {
  public:
    MultipathDisk(Repository& repository, std::wstring nameSpace, const std::wstring& instanceName);
    MultipathDisk(const MultipathDisk&) = delete;
    MultipathDisk& operator=(const MultipathDisk&) = delete;

    /// In the vendor's order; in MPIO's for a disk of another DSM.
    std::vector<DiskPath>& paths() { return paths_; }
    const std::vector<DiskPath>& paths() const { return paths_; }
    /// A null pointer when there is none.
    DiskPath* findByDsmId(std::uint32_t dsmId);
    DiskPath* findByPathId(std::uint64_t pathId);
    /// Whether MPIO's policy class lists the disk's paths.
    bool hasPolicyPaths() const { return !policyPaths_.empty(); }

    LoadBalancePolicy policy() const;
    void setPolicy(LoadBalancePolicy policy);
    /// Whether MPIO lists the policy among those of the disk; a disk without such a list supports
    /// all.
    bool supports(LoadBalancePolicy policy) const;

    /// Writes the disk back. A LUN that lost its last available path becomes unreachable, and comes
    /// back online with the first.
    void store();

  private:
    std::optional<CimInstance> find(const wchar_t* className) const;
    void readLists();
    void joinPaths();
    bool isReachable() const;
    void followReachability();

    Repository& repository_;
    std::wstring nameSpace_;
    std::wstring instanceName_;
    std::optional<CimInstance> lun_;
    std::optional<CimInstance> descriptor_;
    std::optional<CimInstance> policyQuery_;
    std::optional<CimInstance> policyObject_;  ///< embedded in policyQuery_
    std::vector<CimInstance> vendorPaths_;
    std::vector<CimInstance> devices_;
    std::vector<CimInstance> policyPaths_;
    std::vector<DiskPath> paths_;
    bool wasReachable_ = false;
};

}  // namespace quista::simulator

// One namespace of the repository: its classes and instances.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/repository/cim_class.h"
#include "simulator/repository/cim_instance.h"
#include "simulator/repository/object_path.h"
#include "simulator/repository/repository_status.h"

namespace quista::simulator {

/// The operations are those of `Repository`, described there.
class CimNamespace {
  public:
    explicit CimNamespace(std::wstring name) : name_(std::move(name)) {}

    const std::wstring& name() const { return name_; }

    CimClassPtr findClass(std::wstring_view className) const;
    std::vector<CimClassPtr> classes() const;
    std::vector<CimClassPtr> subclasses(std::wstring_view className, bool deep) const;
    RepositoryStatus putClass(CimClass definition, PutMode mode);
    RepositoryStatus deleteClass(std::wstring_view className);
    bool removeProperty(std::wstring_view className, std::wstring_view property);

    std::vector<CimInstancePtr> instances(std::wstring_view className, bool deep) const;
    std::vector<CimInstancePtr> allInstances() const;
    CimInstancePtr findInstance(const ObjectPath& path) const;
    RepositoryStatus putInstance(const CimInstance& instance, PutMode mode);
    RepositoryStatus deleteInstance(const ObjectPath& path);
    void removeInstances(std::wstring_view className);

    bool operator==(const CimNamespace& other) const;

  private:
    /// A class, numbered in the order of creation.
    struct StoredClass {
        std::size_t number = 0;
        CimClassPtr definition;
    };
    /// An instance with the key it was stored under, which outlives the key property.
    struct StoredInstance {
        std::wstring key;
        CimInstancePtr instance;
    };
    using Instances = std::map<std::size_t, StoredInstance>;  ///< by number of creation

    RepositoryStatus completeClass(CimClass& definition) const;
    RepositoryStatus completeSubclasses(const CimClass& definition,
                                        std::vector<CimClassPtr>& completed) const;
    void storeClass(CimClassPtr definition);
    bool bringUpToDate(CimInstancePtr& instance) const;
    bool bringUpToDate(CimValue& value) const;
    void refreshInstances();
    Instances::const_iterator locate(const CimClass& definition, const std::wstring& key) const;
    Instances::const_iterator locate(const ObjectPath& path) const;
    CimClassPtr keyRoot(const CimClass& definition) const;
    void eraseInstance(Instances::const_iterator position);

    std::wstring name_;
    std::map<std::wstring, StoredClass> classes_;  ///< by folded name
    std::size_t nextClass_ = 0;
    Instances instances_;
    std::map<std::wstring, std::size_t> index_;  ///< numbers of instances by class and key
    std::size_t nextInstance_ = 0;
};

}  // namespace quista::simulator

// The repository: namespaces with their classes and instances.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/repository/cim_class.h"
#include "simulator/repository/cim_instance.h"
#include "simulator/repository/cim_namespace.h"
#include "simulator/repository/object_path.h"
#include "simulator/repository/repository_status.h"

namespace quista::simulator {

/// Classes and instances in memory. Namespaces are given in any spelling that `normalizeNamespace`
/// accepts, names in any case. What it hands out are finished objects that never change, so clients
/// may hold them as long as they like. A copy is cheap and independent.
class Repository {
  public:
    /// An empty repository with the namespaces `root`, `root\wmi` and `root\cimv2`.
    Repository();

    bool hasNamespace(std::wstring_view nameSpace) const;
    /// Makes the namespace unless it is there; false when it is badly written.
    bool addNamespace(std::wstring_view nameSpace);
    /// The names as they were added, sorted without case.
    std::vector<std::wstring> namespaces() const;

    CimClassPtr findClass(std::wstring_view nameSpace, std::wstring_view className) const;
    /// All classes of a namespace, superclasses before their subclasses.
    std::vector<CimClassPtr> classes(std::wstring_view nameSpace) const;
    /// The direct subclasses of a class, or with `deep` all of them; an empty class name stands for
    /// the root of all classes.
    std::vector<CimClassPtr> subclasses(std::wstring_view nameSpace, std::wstring_view className,
                                        bool deep) const;
    /// Adds the class, or replaces the one of that name; the definition needs only what the class
    /// itself declares. Subclasses and instances follow the new definition.
    RepositoryStatus putClass(std::wstring_view nameSpace, const CimClass& definition,
                              PutMode mode = PutMode::createOrUpdate);
    /// Deletes the class, its subclasses and their instances.
    RepositoryStatus deleteClass(std::wstring_view nameSpace, std::wstring_view className);
    /// Deletes a property from the class, its subclasses, their instances and their embedded
    /// objects. An instance that loses its key so can still be found under it.
    bool removeProperty(std::wstring_view nameSpace, std::wstring_view className,
                        std::wstring_view property);

    /// The instances in the order of their creation; with `deep` those of subclasses too.
    std::vector<CimInstancePtr> instances(std::wstring_view nameSpace, std::wstring_view className,
                                          bool deep = true) const;
    /// All instances of a namespace in the order of their creation.
    std::vector<CimInstancePtr> allInstances(std::wstring_view nameSpace) const;
    /// The instance that the path names (a class path names none); a null pointer when there is
    /// none. The path's own namespace, if it has one, goes before `nameSpace`.
    CimInstancePtr findInstance(std::wstring_view nameSpace, const ObjectPath& path) const;
    RepositoryStatus putInstance(std::wstring_view nameSpace, const CimInstance& instance,
                                 PutMode mode = PutMode::createOrUpdate);
    RepositoryStatus deleteInstance(std::wstring_view nameSpace, const ObjectPath& path);
    /// Deletes all instances of the class and of its subclasses.
    void removeInstances(std::wstring_view nameSpace, std::wstring_view className);

    /// Forgets all classes and instances; namespaces stay.
    void clear();

    /// Equal namespaces, classes and instances, instances in equal order.
    bool operator==(const Repository& other) const;

  private:
    CimNamespace* find(std::wstring_view nameSpace);
    const CimNamespace* find(std::wstring_view nameSpace) const;

    std::map<std::wstring, CimNamespace> namespaces_;  ///< by folded name
};

}  // namespace quista::simulator

#include "simulator/repository/repository.h"

#include <utility>

#include "simulator/repository/text_case.h"

namespace quista::simulator {

Repository::Repository() {
    for (const wchar_t* name : {L"root", L"root\\wmi", L"root\\cimv2"}) addNamespace(name);
}

const CimNamespace* Repository::find(std::wstring_view nameSpace) const {
    const std::optional<std::wstring> name = normalizeNamespace(nameSpace);
    if (!name) return nullptr;
    const auto found = namespaces_.find(foldCase(*name));
    return found == namespaces_.end() ? nullptr : &found->second;
}

CimNamespace* Repository::find(std::wstring_view nameSpace) {
    return const_cast<CimNamespace*>(std::as_const(*this).find(nameSpace));
}

bool Repository::hasNamespace(std::wstring_view nameSpace) const {
    return find(nameSpace) != nullptr;
}

bool Repository::addNamespace(std::wstring_view nameSpace) {
    std::optional<std::wstring> name = normalizeNamespace(nameSpace);
    if (!name) return false;
    std::wstring folded = foldCase(*name);
    namespaces_.try_emplace(std::move(folded), std::move(*name));
    return true;
}

std::vector<std::wstring> Repository::namespaces() const {
    std::vector<std::wstring> names;
    for (const auto& [folded, each] : namespaces_) names.push_back(each.name());
    return names;
}

CimClassPtr Repository::findClass(std::wstring_view nameSpace, std::wstring_view className) const {
    const CimNamespace* found = find(nameSpace);
    return found ? found->findClass(className) : nullptr;
}

std::vector<CimClassPtr> Repository::classes(std::wstring_view nameSpace) const {
    const CimNamespace* found = find(nameSpace);
    return found ? found->classes() : std::vector<CimClassPtr>();
}

std::vector<CimClassPtr> Repository::subclasses(std::wstring_view nameSpace,
                                                std::wstring_view className, bool deep) const {
    const CimNamespace* found = find(nameSpace);
    return found ? found->subclasses(className, deep) : std::vector<CimClassPtr>();
}

RepositoryStatus Repository::putClass(std::wstring_view nameSpace, const CimClass& definition,
                                      PutMode mode) {
    CimNamespace* found = find(nameSpace);
    return found ? found->putClass(definition, mode) : RepositoryStatus::unknownNamespace;
}

RepositoryStatus Repository::deleteClass(std::wstring_view nameSpace, std::wstring_view className) {
    CimNamespace* found = find(nameSpace);
    return found ? found->deleteClass(className) : RepositoryStatus::unknownNamespace;
}

bool Repository::removeProperty(std::wstring_view nameSpace, std::wstring_view className,
                                std::wstring_view property) {
    CimNamespace* found = find(nameSpace);
    return found && found->removeProperty(className, property);
}

std::vector<CimInstancePtr> Repository::instances(std::wstring_view nameSpace,
                                                  std::wstring_view className, bool deep) const {
    const CimNamespace* found = find(nameSpace);
    return found ? found->instances(className, deep) : std::vector<CimInstancePtr>();
}

std::vector<CimInstancePtr> Repository::allInstances(std::wstring_view nameSpace) const {
    const CimNamespace* found = find(nameSpace);
    return found ? found->allInstances() : std::vector<CimInstancePtr>();
}

CimInstancePtr Repository::findInstance(std::wstring_view nameSpace, const ObjectPath& path) const {
    const CimNamespace* found = find(path.nameSpace.empty() ? nameSpace : path.nameSpace);
    return found ? found->findInstance(path) : nullptr;
}

RepositoryStatus Repository::putInstance(std::wstring_view nameSpace, const CimInstance& instance,
                                         PutMode mode) {
    CimNamespace* found = find(nameSpace);
    return found ? found->putInstance(instance, mode) : RepositoryStatus::unknownNamespace;
}

RepositoryStatus Repository::deleteInstance(std::wstring_view nameSpace, const ObjectPath& path) {
    CimNamespace* found = find(path.nameSpace.empty() ? nameSpace : path.nameSpace);
    return found ? found->deleteInstance(path) : RepositoryStatus::unknownNamespace;
}

void Repository::removeInstances(std::wstring_view nameSpace, std::wstring_view className) {
    if (CimNamespace* found = find(nameSpace)) found->removeInstances(className);
}

void Repository::clear() {
    for (auto& [folded, each] : namespaces_) each = CimNamespace(each.name());
}

bool Repository::operator==(const Repository& other) const {
    return namespaces_ == other.namespaces_;
}

}  // namespace quista::simulator

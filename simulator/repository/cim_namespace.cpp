#include "simulator/repository/cim_namespace.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "simulator/repository/class_inheritance.h"
#include "simulator/repository/instance_key.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

std::wstring indexKey(const std::wstring& className, const std::wstring& key) {
    return foldCase(className) + L'.' + key;
}

/// What two namespaces share need not be compared by content.
template <class Pointer>
bool isSame(const Pointer& left, const Pointer& right) {
    return left == right || *left == *right;
}

bool isInstanceOf(const CimInstance& instance, std::wstring_view className, bool deep) {
    return deep ? instance.definition().isA(className)
                : equalNoCase(instance.className(), className);
}

CimClassPtr without(const CimClass& definition, std::wstring_view property) {
    auto reduced = std::make_shared<CimClass>(definition);
    std::erase_if(reduced->properties, [&](const CimProperty& candidate) {
        return equalNoCase(candidate.name, property);
    });
    return reduced;
}

}  // namespace

CimClassPtr CimNamespace::findClass(std::wstring_view className) const {
    const auto found = classes_.find(foldCase(className));
    return found == classes_.end() ? nullptr : found->second.definition;
}

std::vector<CimClassPtr> CimNamespace::classes() const {
    std::vector<StoredClass> stored;
    for (const auto& [name, each] : classes_) stored.push_back(each);
    // A class may have been replaced by one whose superclass is younger than itself.
    std::sort(stored.begin(), stored.end(), [](const StoredClass& left, const StoredClass& right) {
        const std::size_t leftDepth = left.definition->ancestors.size();
        const std::size_t rightDepth = right.definition->ancestors.size();
        return leftDepth == rightDepth ? left.number < right.number : leftDepth < rightDepth;
    });
    std::vector<CimClassPtr> definitions;
    for (StoredClass& each : stored) definitions.push_back(std::move(each.definition));
    return definitions;
}

std::vector<CimClassPtr> CimNamespace::subclasses(std::wstring_view className, bool deep) const {
    std::vector<CimClassPtr> found = classes();
    std::erase_if(found, [&](const CimClassPtr& candidate) {
        if (equalNoCase(candidate->superclass, className)) return false;
        const bool isDescendant = className.empty() || (candidate->isA(className) &&
                                                        !equalNoCase(candidate->name, className));
        return !deep || !isDescendant;
    });
    return found;
}

RepositoryStatus CimNamespace::completeClass(CimClass& definition) const {
    CimClassPtr superclass;
    if (!definition.superclass.empty()) {
        superclass = findClass(definition.superclass);
        if (!superclass) return RepositoryStatus::unknownSuperclass;
        if (superclass->isA(definition.name)) return RepositoryStatus::cyclicInheritance;
    }
    switch (inherit(definition, superclass.get())) {
        case InheritanceResult::typeConflict:
            return RepositoryStatus::typeConflict;
        case InheritanceResult::tooDeep:
            return RepositoryStatus::tooManyAncestors;
        case InheritanceResult::ok:
            break;
    }
    return RepositoryStatus::ok;
}

/// Lets the subclasses of a definition that is to be stored follow it.
RepositoryStatus CimNamespace::completeSubclasses(const CimClass& definition,
                                                  std::vector<CimClassPtr>& completed) const {
    for (const CimClassPtr& subclass : subclasses(definition.name, true)) {
        const auto superclass =
            std::find_if(completed.begin(), completed.end(), [&](const CimClassPtr& candidate) {
                return equalNoCase(candidate->name, subclass->superclass);
            });
        auto renewed = std::make_shared<CimClass>(*subclass);
        switch (inherit(*renewed, superclass->get())) {
            case InheritanceResult::typeConflict:
                return RepositoryStatus::typeConflict;
            case InheritanceResult::tooDeep:
                return RepositoryStatus::tooManyAncestors;
            case InheritanceResult::ok:
                break;
        }
        completed.push_back(std::move(renewed));
    }
    return RepositoryStatus::ok;
}

RepositoryStatus CimNamespace::putClass(CimClass definition, PutMode mode) {
    const bool exists = findClass(definition.name) != nullptr;
    if (exists && mode == PutMode::createOnly) return RepositoryStatus::alreadyExists;
    if (!exists && mode == PutMode::updateOnly) return RepositoryStatus::unknownClass;
    RepositoryStatus status = completeClass(definition);
    if (status != RepositoryStatus::ok) return status;

    std::vector<CimClassPtr> completed{std::make_shared<const CimClass>(std::move(definition))};
    if (exists) {
        const CimClassPtr replacement = completed.front();
        status = completeSubclasses(*replacement, completed);
        if (status != RepositoryStatus::ok) return status;
    }
    for (CimClassPtr& each : completed) storeClass(std::move(each));
    if (exists) refreshInstances();
    return RepositoryStatus::ok;
}

void CimNamespace::storeClass(CimClassPtr definition) {
    const auto [position, isNew] = classes_.try_emplace(foldCase(definition->name));
    if (isNew) position->second.number = nextClass_++;
    position->second.definition = std::move(definition);
}

RepositoryStatus CimNamespace::deleteClass(std::wstring_view className) {
    if (!findClass(className)) return RepositoryStatus::unknownClass;
    removeInstances(className);
    for (const CimClassPtr& subclass : subclasses(className, true))
        classes_.erase(foldCase(subclass->name));
    classes_.erase(foldCase(className));
    return RepositoryStatus::ok;
}

bool CimNamespace::removeProperty(std::wstring_view className, std::wstring_view property) {
    const CimClassPtr definition = findClass(className);
    if (!definition || !definition->findProperty(property)) return false;
    for (const CimClassPtr& subclass : subclasses(className, true))
        storeClass(without(*subclass, property));
    storeClass(without(*definition, property));
    refreshInstances();
    return true;
}

/// Puts the instance and what it embeds under the definitions that hold now; false when it already
/// is.
bool CimNamespace::bringUpToDate(CimInstancePtr& instance) const {
    CimClassPtr current = findClass(instance->className());
    if (!current) current = instance->sharedDefinition();
    bool changed = current != instance->sharedDefinition();
    CimInstance renewed = changed ? instance->rebasedOn(current) : *instance;
    for (std::size_t i = 0; i < current->properties.size(); ++i) {
        if (current->properties[i].type.base != CimType::object) continue;
        CimValue value = renewed.values()[i];
        if (!bringUpToDate(value)) continue;
        changed = true;
        renewed.set(current->properties[i].name, std::move(value));
    }
    if (changed) instance = std::make_shared<const CimInstance>(std::move(renewed));
    return changed;
}

bool CimNamespace::bringUpToDate(CimValue& value) const {
    if (const CimInstancePtr* object = value.asObject()) {
        CimInstancePtr renewed = *object;
        if (!bringUpToDate(renewed)) return false;
        value = CimValue::ofObject(std::move(renewed));
        return true;
    }
    if (!value.asArray()) return false;
    CimValue::Array elements = *value.asArray();
    bool changed = false;
    for (CimValue& element : elements) changed = bringUpToDate(element) || changed;
    if (changed) value = CimValue::ofArray(std::move(elements));
    return changed;
}

void CimNamespace::refreshInstances() {
    for (auto& [number, stored] : instances_) bringUpToDate(stored.instance);
}

std::vector<CimInstancePtr> CimNamespace::instances(std::wstring_view className, bool deep) const {
    std::vector<CimInstancePtr> found;
    for (const auto& [number, stored] : instances_)
        if (isInstanceOf(*stored.instance, className, deep)) found.push_back(stored.instance);
    return found;
}

std::vector<CimInstancePtr> CimNamespace::allInstances() const {
    std::vector<CimInstancePtr> all;
    for (const auto& [number, stored] : instances_) all.push_back(stored.instance);
    return all;
}

/// Looks for the key in the class and in its subclasses.
CimNamespace::Instances::const_iterator CimNamespace::locate(const CimClass& definition,
                                                             const std::wstring& key) const {
    const auto exact = index_.find(indexKey(definition.name, key));
    if (exact != index_.end()) return instances_.find(exact->second);
    for (const CimClassPtr& subclass : subclasses(definition.name, true)) {
        const auto found = index_.find(indexKey(subclass->name, key));
        if (found != index_.end()) return instances_.find(found->second);
    }
    return instances_.end();
}

CimNamespace::Instances::const_iterator CimNamespace::locate(const ObjectPath& path) const {
    const CimClassPtr definition = findClass(path.className);
    if (!definition) return instances_.end();
    const std::optional<std::wstring> key = keyOf(path, *definition);
    return key ? locate(*definition, *key) : instances_.end();
}

/// The highest ancestor that has the key: among it and its descendants key values are unique.
CimClassPtr CimNamespace::keyRoot(const CimClass& definition) const {
    for (auto ancestor = definition.ancestors.rbegin(); ancestor != definition.ancestors.rend();
         ++ancestor) {
        const CimClassPtr candidate = findClass(*ancestor);
        if (candidate && (candidate->hasKey() || candidate->isSingleton())) return candidate;
    }
    return findClass(definition.name);
}

CimInstancePtr CimNamespace::findInstance(const ObjectPath& path) const {
    const auto position = locate(path);
    return position == instances_.end() ? nullptr : position->second.instance;
}

RepositoryStatus CimNamespace::putInstance(const CimInstance& instance, PutMode mode) {
    const CimClassPtr definition = findClass(instance.className());
    if (!definition) return RepositoryStatus::unknownClass;
    if (definition->isAbstract()) return RepositoryStatus::abstractClass;
    CimInstancePtr current = std::make_shared<const CimInstance>(instance);
    bringUpToDate(current);
    std::wstring key;
    const RepositoryStatus keyStatus = keyOf(*current, key);
    if (keyStatus != RepositoryStatus::ok) return keyStatus;

    const auto position = locate(*keyRoot(*definition), key);
    if (position == instances_.end()) {
        if (mode == PutMode::updateOnly) return RepositoryStatus::unknownInstance;
        index_[indexKey(definition->name, key)] = nextInstance_;
        instances_[nextInstance_++] = {key, current};
        return RepositoryStatus::ok;
    }
    const bool sameClass = equalNoCase(position->second.instance->className(), definition->name);
    if (mode == PutMode::createOnly || !sameClass) return RepositoryStatus::alreadyExists;
    instances_[position->first].instance = current;
    return RepositoryStatus::ok;
}

RepositoryStatus CimNamespace::deleteInstance(const ObjectPath& path) {
    if (!findClass(path.className)) return RepositoryStatus::unknownClass;
    const auto position = locate(path);
    if (position == instances_.end()) return RepositoryStatus::unknownInstance;
    eraseInstance(position);
    return RepositoryStatus::ok;
}

void CimNamespace::removeInstances(std::wstring_view className) {
    for (auto position = instances_.cbegin(); position != instances_.cend();) {
        const auto next = std::next(position);
        if (isInstanceOf(*position->second.instance, className, true)) eraseInstance(position);
        position = next;
    }
}

void CimNamespace::eraseInstance(Instances::const_iterator position) {
    index_.erase(indexKey(position->second.instance->className(), position->second.key));
    instances_.erase(position);
}

bool CimNamespace::operator==(const CimNamespace& other) const {
    const auto equalClasses = [](const auto& left, const auto& right) {
        return left.first == right.first && isSame(left.second.definition, right.second.definition);
    };
    const auto equalInstances = [](const auto& left, const auto& right) {
        return isSame(left.second.instance, right.second.instance);
    };
    return std::equal(classes_.begin(), classes_.end(), other.classes_.begin(),
                      other.classes_.end(), equalClasses) &&
           std::equal(instances_.begin(), instances_.end(), other.instances_.begin(),
                      other.instances_.end(), equalInstances);
}

}  // namespace quista::simulator

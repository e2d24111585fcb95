#include "simulator/driver/published_classes.h"

#include <algorithm>
#include <optional>
#include <set>
#include <vector>

#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

constexpr std::wstring_view kRoot = L"root\\";
constexpr std::wstring_view kSimulatorRoot = L"root\\simulator\\";

bool startsWithNoCase(std::wstring_view text, std::wstring_view beginning) {
    return equalNoCase(text.substr(0, beginning.size()), beginning);
}

/// Where the instances of a namespace are put aside; nothing for the simulator's own namespaces.
std::optional<std::wstring> asideOf(std::wstring_view nameSpace) {
    const std::optional<std::wstring> name = normalizeNamespace(nameSpace);
    if (!name || !startsWithNoCase(*name, kRoot) || startsWithNoCase(*name, kSimulatorRoot)) {
        return std::nullopt;
    }
    return std::wstring(kSimulatorRoot) + name->substr(kRoot.size());
}

bool isPublished(const CimClass& definition) {
    return definition.qualifiers.isSet(L"WMI");
}

/// Copies classes, together with those that they build on, to the namespace aside.
class ClassKeeper {
  public:
    ClassKeeper(Repository& repository, std::wstring_view from, const std::wstring& aside)
        : repository_(repository), from_(from), aside_(aside) {}

    void keep(const std::wstring& className) {
        if (className.empty() || !kept_.insert(foldCase(className)).second) return;
        const CimClassPtr definition = repository_.findClass(from_, className);
        // One that was lost before lies aside already.
        if (definition == nullptr) return;
        keep(definition->superclass);
        for (const CimProperty& property : definition->properties) {
            if (property.type.base == CimType::object) keep(property.type.className);
        }
        CimClass copy = *definition;
        copy.methods.clear();  // nobody calls them here
        repository_.putClass(aside_, copy);
    }

  private:
    Repository& repository_;
    std::wstring_view from_;
    const std::wstring& aside_;
    std::set<std::wstring> kept_;
};

void putAside(Repository& repository, std::wstring_view nameSpace, const CimClass& definition) {
    const std::optional<std::wstring> aside = asideOf(nameSpace);
    if (!aside) return;
    std::vector<CimClassPtr> lost = repository.subclasses(nameSpace, definition.name, true);
    lost.push_back(repository.findClass(nameSpace, definition.name));
    std::erase_if(lost, [](const CimClassPtr& each) { return !isPublished(*each); });
    if (lost.empty()) return;

    repository.addNamespace(*aside);
    ClassKeeper keeper(repository, nameSpace, *aside);
    for (const CimClassPtr& each : lost) keeper.keep(each->name);
    for (const CimInstancePtr& instance : repository.instances(nameSpace, definition.name)) {
        if (isPublished(instance->definition())) repository.putInstance(*aside, *instance);
    }
}

/// Forgets the classes aside when all of them are back where they belong and none has instances.
void clearAside(Repository& repository, const std::wstring& aside, const std::wstring& home) {
    const std::vector<CimClassPtr> classes = repository.classes(aside);
    const bool areBack = std::ranges::all_of(classes, [&](const CimClassPtr& each) {
        return repository.findClass(home, each->name) != nullptr;
    });
    if (!areBack || !repository.allInstances(aside).empty()) return;
    for (const CimClassPtr& each : classes) repository.deleteClass(aside, each->name);
}

void giveBack(Repository& repository, const std::wstring& aside) {
    const std::wstring home = std::wstring(kRoot) + aside.substr(kSimulatorRoot.size());
    for (const CimInstancePtr& instance : repository.allInstances(aside)) {
        if (repository.findClass(home, instance->className()) == nullptr) continue;
        repository.putInstance(home, *instance, PutMode::createOnly);
        const std::optional<ObjectPath> path = parseObjectPath(relativePath(*instance));
        if (path) repository.deleteInstance(aside, *path);
    }
    clearAside(repository, aside, home);
}

}  // namespace

RepositoryStatus loseClass(Repository& repository, std::wstring_view nameSpace,
                           std::wstring_view className) {
    const CimClassPtr definition = repository.findClass(nameSpace, className);
    if (definition != nullptr) putAside(repository, nameSpace, *definition);
    return repository.deleteClass(nameSpace, className);
}

void republishInstances(Repository& repository) {
    for (const std::wstring& name : repository.namespaces()) {
        if (startsWithNoCase(name, kSimulatorRoot)) giveBack(repository, name);
    }
}

}  // namespace quista::simulator

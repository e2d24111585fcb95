#include "simulator/repository/class_inheritance.h"

#include <algorithm>
#include <utility>

#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

/// Deeper derivations are a mistake, and would make the ancestors of all classes grow
/// quadratically.
constexpr std::size_t kMaxAncestors = 100;

template <typename Member>
Member* findMember(std::vector<Member>& members, const std::wstring& name) {
    const auto found = std::find_if(members.begin(), members.end(), [&](const Member& member) {
        return equalNoCase(member.name, name);
    });
    return found == members.end() ? nullptr : &*found;
}

/// What the class itself declares.
template <typename Member>
std::vector<Member> ownMembers(std::vector<Member> members, const std::wstring& className) {
    std::erase_if(members, [&](const Member& member) {
        return !member.declaredIn.empty() && !equalNoCase(member.declaredIn, className);
    });
    for (Member& member : members) member.declaredIn = className;
    return members;
}

void inheritQualifiers(CimQualifiers& own, const CimQualifiers& inherited) {
    for (const CimQualifier& qualifier : inherited)
        if (!own.find(qualifier.name)) own.put(qualifier);
}

InheritanceResult redeclare(CimProperty& inherited, CimProperty own) {
    if (!(inherited.type == own.type)) return InheritanceResult::typeConflict;
    inheritQualifiers(own.qualifiers, inherited.qualifiers);
    if (own.defaultValue.isNull()) own.defaultValue = inherited.defaultValue;
    own.name = inherited.name;
    inherited = std::move(own);
    return InheritanceResult::ok;
}

InheritanceResult mergeProperties(CimClass& definition, const CimClass& superclass) {
    std::vector<CimProperty> merged = superclass.properties;
    for (CimProperty& own : definition.properties) {
        CimProperty* inherited = findMember(merged, own.name);
        if (!inherited)
            merged.push_back(std::move(own));
        else if (redeclare(*inherited, std::move(own)) != InheritanceResult::ok)
            return InheritanceResult::typeConflict;
    }
    definition.properties = std::move(merged);
    return InheritanceResult::ok;
}

void mergeMethods(CimClass& definition, const CimClass& superclass) {
    std::vector<CimMethod> merged = superclass.methods;
    for (CimMethod& own : definition.methods) {
        if (CimMethod* inherited = findMember(merged, own.name))
            *inherited = std::move(own);
        else
            merged.push_back(std::move(own));
    }
    definition.methods = std::move(merged);
}

void mergeQualifiers(CimClass& definition, const CimClass& superclass) {
    for (const CimQualifier& qualifier : superclass.qualifiers)
        if (hasFlavor(qualifier.flavors, QualifierFlavor::toSubclass) &&
            !definition.qualifiers.find(qualifier.name))
            definition.qualifiers.put(qualifier);
}

}  // namespace

InheritanceResult inherit(CimClass& definition, const CimClass* superclass) {
    definition.properties = ownMembers(std::move(definition.properties), definition.name);
    definition.methods = ownMembers(std::move(definition.methods), definition.name);
    definition.ancestors.clear();
    definition.superclass.clear();
    if (!superclass) return InheritanceResult::ok;
    if (superclass->ancestors.size() >= kMaxAncestors) return InheritanceResult::tooDeep;
    definition.superclass = superclass->name;
    definition.ancestors = superclass->ancestors;
    definition.ancestors.insert(definition.ancestors.begin(), superclass->name);
    mergeQualifiers(definition, *superclass);
    mergeMethods(definition, *superclass);
    return mergeProperties(definition, *superclass);
}

}  // namespace quista::simulator

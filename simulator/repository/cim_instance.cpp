#include "simulator/repository/cim_instance.h"

#include <utility>

#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

std::size_t indexOf(const CimClass& definition, const CimProperty& property) {
    return static_cast<std::size_t>(&property - definition.properties.data());
}

}  // namespace

CimInstance::CimInstance(CimClassPtr definition) : definition_(std::move(definition)) {
    values_.reserve(definition_->properties.size());
    for (const CimProperty& property : definition_->properties)
        values_.push_back(property.defaultValue);
}

const CimValue* CimInstance::find(std::wstring_view property) const {
    const CimProperty* declared = definition_->findProperty(property);
    return declared ? &values_[indexOf(*definition_, *declared)] : nullptr;
}

CimInstance::SetResult CimInstance::set(std::wstring_view property, CimValue value) {
    const CimProperty* declared = definition_->findProperty(property);
    if (!declared) return SetResult::unknownProperty;
    if (!valueFits(declared->type, value)) return SetResult::wrongType;
    values_[indexOf(*definition_, *declared)] = std::move(value);
    return SetResult::done;
}

CimInstance CimInstance::rebasedOn(CimClassPtr definition) const {
    CimInstance rebased(std::move(definition));
    for (std::size_t i = 0; i < rebased.values_.size(); ++i) {
        const CimProperty& property = rebased.definition_->properties[i];
        const CimProperty* before = definition_->findProperty(property.name);
        if (before && before->type == property.type)
            rebased.values_[i] = values_[indexOf(*definition_, *before)];
    }
    return rebased;
}

bool CimInstance::operator==(const CimInstance& other) const {
    if (!equalNoCase(className(), other.className())) return false;
    if (values_.size() != other.values_.size()) return false;
    for (std::size_t i = 0; i < values_.size(); ++i) {
        const CimValue* theirs = other.find(definition_->properties[i].name);
        if (!theirs || !(values_[i] == *theirs)) return false;
    }
    return true;
}

}  // namespace quista::simulator

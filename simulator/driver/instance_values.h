// Values of instances as drivers work with them. Hosts may declare classes in their own way: what
// is not there, is NULL or is of another type reads as nothing and is left alone by changes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/repository/cim_instance.h"
#include "simulator/repository/repository.h"

namespace quista::simulator {

/// An integer or a boolean as a number; negative ones with their sign extended to 64 bits.
std::optional<std::uint64_t> numberIn(const CimValue& value);
std::optional<std::uint64_t> numberOf(const CimInstance& instance, std::wstring_view property);
void setNumber(CimInstance& instance, std::wstring_view property, std::uint64_t number);

std::optional<std::wstring> textOf(const CimInstance& instance, std::wstring_view property);

std::optional<CimInstance> objectOf(const CimInstance& instance, std::wstring_view property);
std::vector<CimInstance> objectsOf(const CimInstance& instance, std::wstring_view property);
/// Puts the objects in the place of those that were read from the property.
void setObjects(CimInstance& instance, std::wstring_view property,
                const std::vector<CimInstance>& objects);

/// The instance of the class that bears this name in its key property `InstanceName`; a null
/// pointer when there is none.
CimInstancePtr findByName(const Repository& repository, const std::wstring& nameSpace,
                          const wchar_t* className, const std::wstring& instanceName);

}  // namespace quista::simulator

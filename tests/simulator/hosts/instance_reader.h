// Reads hosts into a repository, and the properties of their instances. What is missing or of
// another kind is a failure of the running test.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/repository/repository.h"

namespace quista::test {

inline constexpr std::wstring_view kWmi = L"root\\wmi";
inline constexpr std::wstring_view kCimv2 = L"root\\cimv2";

/// The repository after reading the given files of simulator/hosts, one after the other.
simulator::Repository loadHostFiles(const std::vector<std::wstring>& files);
simulator::Repository loadHostText(const std::wstring& mof);

/// Whether the file, read on its own or after others, asks to be compiled again on repair.
bool hasAutoRecover(const std::wstring& file);

std::wstring textOf(const simulator::CimInstance& instance, std::wstring_view property);
/// Nothing for NULL.
std::optional<std::wstring> textOrNull(const simulator::CimInstance& instance,
                                       std::wstring_view property);
std::uint64_t numberOf(const simulator::CimInstance& instance, std::wstring_view property);
std::int64_t signedNumberOf(const simulator::CimInstance& instance, std::wstring_view property);
bool truthOf(const simulator::CimInstance& instance, std::wstring_view property);
std::vector<std::uint8_t> bytesOf(const simulator::CimInstance& instance,
                                  std::wstring_view property);
/// An empty instance, of no use, when there is none.
simulator::CimInstancePtr objectOf(const simulator::CimInstance& instance,
                                   std::wstring_view property);
std::vector<simulator::CimInstancePtr> objectsOf(const simulator::CimInstance& instance,
                                                 std::wstring_view property);

/// The text as test output shows it.
std::string shown(std::wstring_view text);

}  // namespace quista::test

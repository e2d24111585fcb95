// A started sample host whose driver is called as a client calls it, and read back as a whole.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/repository/repository.h"
#include "tests/simulator/com/host_fixture.h"
#include "tests/simulator/hosts/host_records.h"

namespace quista::test {

/// Policies, path states and refusals in the numbers that clients see.
inline constexpr std::uint32_t kFailOver = 1;
inline constexpr std::uint32_t kRoundRobin = 2;
inline constexpr std::uint32_t kSubset = 3;
inline constexpr std::uint32_t kQueueDepth = 4;
inline constexpr std::uint32_t kWeighted = 5;
inline constexpr std::uint32_t kLeastBlocks = 6;
inline constexpr std::uint32_t kVendorSpecific = 7;

inline constexpr std::uint32_t kSuccess = 0;
inline constexpr std::uint32_t kInvalidParameter = 0xC000000D;
inline constexpr std::uint32_t kNoSuchPath = 0xC000000E;
inline constexpr std::uint32_t kPathFailed = 0xC000009D;
inline constexpr std::uint32_t kPathDisabled = 0xC00000A3;
inline constexpr std::uint32_t kNotUnderThisPolicy = 0xC00000BB;
inline constexpr std::uint32_t kNotSupportedByStorage = 0xE0000008;

class DriverTest : public HostTest {
  protected:
    /// The host "standard", unless the test loads another.
    DriverTest() { loadHost(L"standard"); }

    /// Starts anew with a sample host.
    void loadHost(const std::wstring& sample);

    /// The repository as a client could read it.
    simulator::Repository repository();
    VendorLun lun(std::size_t index);
    MpioDisk disk(std::size_t index);
    /// States and ranks of a LUN's paths, in order.
    std::vector<std::uint64_t> states(std::size_t lunIndex);
    std::vector<bool> primaries(std::size_t lunIndex);
    std::vector<std::uint64_t> weights(std::size_t lunIndex);

    /// The object path of an instance by its key property InstanceName.
    static std::wstring pathOf(const wchar_t* className, const std::wstring& instanceName);

    /// Executes a method with parameters that are set beforehand; its result, and the out-parameter
    /// when there is one.
    HRESULT execute(const std::wstring& path, const wchar_t* method, IWbemClassObject* in);
    std::uint32_t answer(const wchar_t* outParameter);
    bool hasAnswer() const { return out_ != nullptr; }

    /// A path operation on a LUN: ReturnCode.
    std::uint32_t run(std::size_t lunIndex, const wchar_t* method, std::uint32_t dsmId);
    std::uint32_t setWeight(std::size_t lunIndex, std::uint32_t dsmId, std::uint32_t weight);

    /// Sets one property of the first instance of a class and puts it back.
    HRESULT change(const wchar_t* className, const wchar_t* property, OwnedVariant value);

  private:
    Object out_;
};

/// Bytes as a VARIANT of type VT_ARRAY | VT_UI1.
OwnedVariant variantOf(const std::vector<std::uint8_t>& bytes);
void put(IWbemClassObject& object, const wchar_t* property, OwnedVariant value);
void put(IWbemClassObject& object, const wchar_t* property, std::uint32_t number);

}  // namespace quista::test

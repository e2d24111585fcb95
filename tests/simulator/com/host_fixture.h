// A started simulator with classes of every kind, and what tests need to talk to it as a client.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "simulator/com/owned_variant.h"
#include "simulator/com/pointers.h"
#include "simulator/com/simulated_host.h"
#include "simulator/com/wbem_result.h"

namespace quista::test {

using simulator::ComOwner;
using simulator::OwnedVariant;
using simulator::wbem;
using Object = ComOwner<IWbemClassObject>;
using Results = ComOwner<IEnumWbemClassObject>;

inline constexpr LONG kInfinite = -1;
inline constexpr LONG kSemisynchronous = WBEM_FLAG_RETURN_IMMEDIATELY;
inline constexpr LONG kForwardOnly = 0x30;

/// A BSTR for the length of a call.
class Text {
  public:
    explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(text_); }
    operator BSTR() const { return text_; }

  private:
    BSTR text_;
};

OwnedVariant variantOf(const wchar_t* text);
OwnedVariant variantOf(LONG number);
/// The text of a VT_BSTR; "(no text)" for other types.
std::wstring textOf(OwnedVariant& value);

class HostTest : public ::testing::Test {
  protected:
    HostTest();
    ~HostTest() override;

    /// Loads MOF text into root\wmi; a refused text fails the test.
    void load(const std::wstring& mof);
    /// The classes of `kSampleMof` with two instances of Disk.
    void loadSample();

    ComOwner<IWbemLocator> createLocator();
    ComOwner<IWbemServices> connect(const wchar_t* nameSpace = L"root\\wmi");
    /// GetObject; null when it fails.
    Object object(const wchar_t* path);
    Object spawn(const wchar_t* className);
    /// In-parameters of a method.
    Object inParameters(const wchar_t* className, const wchar_t* method);
    Results enumerate(const wchar_t* className, LONG flags = 0);
    /// The `Name` of every result, in order.
    std::vector<std::wstring> names(IEnumWbemClassObject& results);

    /// The simulator, a services object of root\wmi that is made on first use.
    simulator::SimulatedHost& host() { return *host_; }
    IWbemServices& wmi();
    /// Releases the services object and destroys the simulator.
    void destroyHost();

  private:
    std::unique_ptr<simulator::SimulatedHost> host_;
    ComOwner<IWbemServices> wmi_;
};

/// Property of an object that must have it.
OwnedVariant get(IWbemClassObject& object, const wchar_t* property);

/// Classes with inheritance, keys, methods and embedded objects, and two instances of Disk.
extern const wchar_t* const kSampleMof;

}  // namespace quista::test

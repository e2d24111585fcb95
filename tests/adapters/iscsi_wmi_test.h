// What the tests of the iSCSI classes share: adapters with portals, and the calls that read them.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <list>
#include <string>
#include <vector>

#include "quista/adapters.h"
#include "quista/status.h"
#include "tests/support/allocation_spy.h"
#include "tests/support/library_test.h"

namespace quista::test {

inline constexpr const wchar_t* kAdapterClass = L"MSiSCSI_HBAInformation";
inline constexpr const wchar_t* kPortalsClass = L"MSiSCSI_PortalInfoClass";
inline constexpr const wchar_t* kPortalClass = L"ISCSI_PortalInfo";
inline constexpr const wchar_t* kAddressClass = L"ISCSI_IP_Address";

// Results of WMI's calls.
inline constexpr HRESULT kTimedOut = 0x40004;
inline constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80041002);

MofObject textAddress(const std::wstring& text);
MofObject ipv4Address(std::uint32_t bits);
MofObject ipv6Address(const std::vector<std::int64_t>& bytes);
MofObject portal(const MofObject& address, unsigned tcpPort = 3260);
/// The portals of an adapter, counted right.
MofObject portalInfo(const std::wstring& instance, const std::vector<MofObject>& portals);
MofObject adapter(const std::wstring& instance, const std::wstring& driver = L"msiscsi.sys",
                  const std::wstring& model = L"iSCSI Initiator");

/// A VARIANT of the test's own, empty at first.
class OwnedVariant {
  public:
    OwnedVariant() { std::memset(&value_, 0, sizeof(value_)); }
    explicit OwnedVariant(const std::wstring& text);
    ~OwnedVariant() { VariantClear(&value_); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;

    VARIANT* get() { return &value_; }
    const VARIANT& value() const { return value_; }
    VARTYPE type() const { return value_.vt; }
    LONG number() const { return value_.lVal; }
    /// Empty when the value is no text.
    std::wstring text() const;
    /// Number of elements; -1 when the value is no array.
    LONG elements() const;

  private:
    VARIANT value_;
};

/// A host with the iSCSI classes, without instances.
class IscsiWmiTest : public LibraryTest {
  protected:
    IscsiWmiTest() { host.loadClasses(L"iscsi"); }

    /// The calls of WMI's own methods, such as "Get ISCSI_PortalInfo.Port" or "Next C".
    std::vector<std::wstring> calls() const;
};

/// A recorded call in short.
std::wstring shortText(const simulator::CallRecord& call);

}  // namespace quista::test

// ConnectServer and OpenNamespace.
#include "tests/simulator/com/host_fixture.h"

namespace quista::test {
namespace {

using simulator::LiveObjects;

class NamespacesTest : public HostTest {
  protected:
    HRESULT tryConnect(const wchar_t* nameSpace, LONG flags = 0) {
        IWbemServices* services = unset();
        const HRESULT result = createLocator()->ConnectServer(
            Text(nameSpace), nullptr, nullptr, nullptr, flags, nullptr, nullptr, &services);
        EXPECT_EQ(services != nullptr, result == S_OK);
        if (services != nullptr) services->Release();
        return result;
    }

    /// A pointer that a failed call has to null.
    static IWbemServices* unset() { return reinterpret_cast<IWbemServices*>(8); }
};

TEST_F(NamespacesTest, ConnectServer_AllSpellings_AreAccepted) {
    for (const wchar_t* nameSpace : {L"root\\wmi", L"ROOT\\WMI", L"Root\\CimV2",
                                     L"\\\\.\\root\\wmi", L"//./root", L"root/cimv2", L"root"}) {
        EXPECT_EQ(tryConnect(nameSpace), S_OK) << nameSpace;
    }
}

TEST_F(NamespacesTest, ConnectServer_BadlyWrittenOrUnknown_InvalidNamespace) {
    for (const wchar_t* nameSpace :
         {L"", L"root\\wmi\\", L"root\\\\wmi", L"\\root", L"root\\unknown", L"\\\\.", L"wmi"}) {
        EXPECT_EQ(tryConnect(nameSpace), wbem(WBEM_E_INVALID_NAMESPACE)) << nameSpace;
    }
}

TEST_F(NamespacesTest, ConnectServer_MaximumWait_IsAccepted) {
    EXPECT_EQ(tryConnect(L"root\\wmi", WBEM_FLAG_CONNECT_USE_MAX_WAIT), S_OK);
    EXPECT_EQ(tryConnect(L"root\\wmi", 1), wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(NamespacesTest, ConnectServer_NullPointers_InvalidParameter) {
    const ComOwner<IWbemLocator> locator = createLocator();
    IWbemServices* services = unset();
    EXPECT_EQ(
        locator->ConnectServer(nullptr, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &services),
        wbem(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(services, nullptr);
    EXPECT_EQ(locator->ConnectServer(Text(L"root\\wmi"), nullptr, nullptr, nullptr, 0, nullptr,
                                     nullptr, nullptr),
              wbem(WBEM_E_INVALID_PARAMETER));
}

TEST_F(NamespacesTest, ConnectServer_NamespaceOfAText_IsThere) {
    load(
        L"#pragma namespace(\"\\\\\\\\.\\\\root\\\\vendor\")\nclass Thing { [key] string Name; };");
    EXPECT_EQ(tryConnect(L"root\\vendor"), S_OK);
}

TEST_F(NamespacesTest, ConnectServer_CountsOneServicesObject) {
    const ComOwner<IWbemServices> services = connect();
    EXPECT_EQ(host().liveObjects(), LiveObjects{.services = 1});
}

TEST_F(NamespacesTest, OpenNamespace_RelativeName_OpensTheChild) {
    const ComOwner<IWbemServices> root = connect(L"root");
    IWbemServices* child = nullptr;
    ASSERT_EQ(root->OpenNamespace(Text(L"wmi"), 0, nullptr, &child, nullptr), S_OK);
    child->Release();
    EXPECT_EQ(root->OpenNamespace(Text(L"other"), 0, nullptr, &child, nullptr),
              wbem(WBEM_E_INVALID_NAMESPACE));
    EXPECT_EQ(child, nullptr);
}

}  // namespace
}  // namespace quista::test

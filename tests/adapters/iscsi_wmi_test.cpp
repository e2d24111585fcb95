#include "tests/adapters/iscsi_wmi_test.h"

namespace quista::test {

namespace {

MofObject address(std::int64_t type) {
    return MofObject(kAddressClass).number(L"Type", type);
}

}  // namespace

MofObject textAddress(const std::wstring& text) {
    return address(0).text(L"TextAddress", text);
}

MofObject ipv4Address(std::uint32_t bits) {
    return address(1).unsignedNumber(L"IpV4Address", bits);
}

MofObject ipv6Address(const std::vector<std::int64_t>& bytes) {
    return address(2).numbers(L"IpV6Address", bytes);
}

MofObject portal(const MofObject& address, unsigned tcpPort) {
    return MofObject(kPortalClass).number(L"Port", tcpPort).object(L"IPAddr", address);
}

MofObject portalInfo(const std::wstring& instance, const std::vector<MofObject>& portals) {
    return MofObject(kPortalsClass)
        .text(L"InstanceName", instance)
        .number(L"PortalInfoCount", static_cast<std::int64_t>(portals.size()))
        .objects(L"PortalInformation", portals);
}

MofObject adapter(const std::wstring& instance, const std::wstring& driver,
                  const std::wstring& model) {
    return MofObject(kAdapterClass)
        .text(L"InstanceName", instance)
        .text(L"DriverName", driver)
        .unsignedNumber(L"UniqueAdapterId", 0x1122334455667788)
        .text(L"VendorModel", model);
}

OwnedVariant::OwnedVariant(const std::wstring& text) : OwnedVariant() {
    value_.vt = VT_BSTR;
    value_.bstrVal = SysAllocString(text.c_str());
}

std::wstring OwnedVariant::text() const {
    return value_.vt == VT_BSTR && value_.bstrVal != nullptr ? value_.bstrVal : L"";
}

LONG OwnedVariant::elements() const {
    LONG upper = -1;
    if ((value_.vt & VT_ARRAY) == 0) return -1;
    return SafeArrayGetUBound(value_.parray, 1, &upper) == S_OK ? upper + 1 : -1;
}

std::wstring shortText(const simulator::CallRecord& call) {
    std::wstring text = call.method + L" " + call.className;
    if (call.method == L"Get") text += L"." + call.detail;
    return text;
}

std::vector<std::wstring> IscsiWmiTest::calls() const {
    std::vector<std::wstring> texts;
    for (const simulator::CallRecord& call : host->trace()) {
        if (call.method != L"QueryInterface") texts.push_back(shortText(call));
    }
    return texts;
}

}  // namespace quista::test

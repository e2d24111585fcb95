#include "tests/simulator/driver/driver_fixture.h"

#include <algorithm>

#include "tests/simulator/hosts/instance_reader.h"

namespace quista::test {

void DriverTest::loadHost(const std::wstring& sample) {
    const std::string folder = QUISTA_HOSTS_FOLDER;
    const std::wstring file = std::wstring(folder.begin(), folder.end()) + L"/" + sample + L".mof";
    host().clear();
    simulator::LoadError error;
    EXPECT_TRUE(host().load(file, error)) << shown(error.reason);
}

simulator::Repository DriverTest::repository() {
    return loadHostText(host().dump());
}

VendorLun DriverTest::lun(std::size_t index) {
    return vendorLuns(repository()).at(index);
}

MpioDisk DriverTest::disk(std::size_t index) {
    return mpioDisks(repository()).at(index);
}

std::vector<std::uint64_t> DriverTest::states(std::size_t lunIndex) {
    std::vector<std::uint64_t> all;
    for (const VendorPath& path : lun(lunIndex).paths) all.push_back(path.state);
    return all;
}

std::vector<bool> DriverTest::primaries(std::size_t lunIndex) {
    std::vector<bool> all;
    for (const VendorPath& path : lun(lunIndex).paths) all.push_back(path.isPrimary);
    return all;
}

std::vector<std::uint64_t> DriverTest::weights(std::size_t lunIndex) {
    std::vector<std::uint64_t> all;
    for (const VendorPath& path : lun(lunIndex).paths) all.push_back(path.weight);
    return all;
}

std::wstring DriverTest::pathOf(const wchar_t* className, const std::wstring& instanceName) {
    std::wstring path = std::wstring(className) + L".InstanceName=\"";
    for (const wchar_t character : instanceName) {
        path += character;
        if (character == L'\\') path += character;
    }
    return path + L'"';
}

HRESULT DriverTest::execute(const std::wstring& path, const wchar_t* method, IWbemClassObject* in) {
    IWbemClassObject* out = nullptr;
    const HRESULT result =
        wmi().ExecMethod(Text(path.c_str()), Text(method), 0, nullptr, in, &out, nullptr);
    out_.reset(out);
    return result;
}

std::uint32_t DriverTest::answer(const wchar_t* outParameter) {
    EXPECT_NE(out_, nullptr);
    if (out_ == nullptr) return 0xFFFFFFFF;
    return static_cast<std::uint32_t>(get(*out_, outParameter)->lVal);
}

std::uint32_t DriverTest::run(std::size_t lunIndex, const wchar_t* method, std::uint32_t dsmId) {
    const Object in = inParameters(L"KORVADSM_LUNINFO", method);
    put(*in, L"DsmID", dsmId);
    const std::wstring path = pathOf(L"KORVADSM_LUNINFO", lun(lunIndex).instanceName);
    EXPECT_EQ(execute(path, method, in.get()), S_OK);
    return answer(L"ReturnCode");
}

std::uint32_t DriverTest::setWeight(std::size_t lunIndex, std::uint32_t dsmId,
                                    std::uint32_t weight) {
    const Object in = inParameters(L"KORVADSM_LUNINFO", L"SetWeight");
    put(*in, L"DsmID", dsmId);
    put(*in, L"Weight", weight);
    const std::wstring path = pathOf(L"KORVADSM_LUNINFO", lun(lunIndex).instanceName);
    EXPECT_EQ(execute(path, L"SetWeight", in.get()), S_OK);
    return answer(L"ReturnCode");
}

HRESULT DriverTest::change(const wchar_t* className, const wchar_t* property, OwnedVariant value) {
    const Results results = enumerate(className);
    IWbemClassObject* first = nullptr;
    ULONG returned = 0;
    EXPECT_EQ(results->Next(kInfinite, 1, &first, &returned), S_OK);
    const Object instance(first);
    if (instance == nullptr) return E_FAIL;
    put(*instance, property, std::move(value));
    return wmi().PutInstance(instance.get(), 0, nullptr, nullptr);
}

OwnedVariant variantOf(const std::vector<std::uint8_t>& bytes) {
    OwnedVariant value;
    value->vt = VT_ARRAY | VT_UI1;
    value->parray = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(value->parray->pvData));
    return value;
}

void put(IWbemClassObject& object, const wchar_t* property, OwnedVariant value) {
    EXPECT_EQ(object.Put(property, 0, value.get(), 0), S_OK) << shown(property);
}

void put(IWbemClassObject& object, const wchar_t* property, std::uint32_t number) {
    put(object, property, variantOf(static_cast<LONG>(number)));
}

}  // namespace quista::test

#include "tests/simulator/com/host_fixture.h"

namespace quista::test {

using simulator::LoadError;
using simulator::SimulatedHost;

const wchar_t* const kSampleMof =
    LR"(
[abstract] class Device
{
    [key] string Name;
    uint32 State = 7;
};

class Address
{
    uint8 Port;
    uint8 Lun;
};

class Disk : Device
{
    uint64 Size;
    string Serial;
    Address Location;
    Address Paths[];
    [not_null] boolean Enabled = TRUE;

    [implemented] void Reset([in] uint32 Mode, [in] string Reason, [out] uint32 ReturnCode);
    [implemented] void Refresh([out] uint32 ReturnCode);
    [implemented] uint32 Check([out] string Report);
    [implemented] void Forget([in] uint32 Mode);
    [implemented, static] void Rescan([out] uint32 ReturnCode);
};

class FastDisk : Disk
{
    uint32 Speed;
};

instance of Disk
{
    Name = "first";
    Size = 5000000000;
    Serial = "ABC";
    Location = instance of Address { Port = 1; Lun = 2; };
    Paths = { instance of Address { Port = 3; }, instance of Address { Port = 4; } };
};

instance of FastDisk
{
    Name = "second";
    Serial = "def";
    Speed = 16;
};
)";

OwnedVariant variantOf(const wchar_t* text) {
    OwnedVariant value;
    value->vt = VT_BSTR;
    value->bstrVal = SysAllocString(text);
    return value;
}

OwnedVariant variantOf(LONG number) {
    OwnedVariant value;
    value->vt = VT_I4;
    value->lVal = number;
    return value;
}

std::wstring textOf(OwnedVariant& value) {
    return value->vt == VT_BSTR ? value->bstrVal : L"(no text)";
}

OwnedVariant get(IWbemClassObject& object, const wchar_t* property) {
    OwnedVariant value;
    EXPECT_EQ(object.Get(property, 0, value.get(), nullptr, nullptr), S_OK);
    return value;
}

HostTest::HostTest() {
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    host_ = std::make_unique<SimulatedHost>();
    EXPECT_EQ(host_->start(), S_OK);
}

HostTest::~HostTest() {
    destroyHost();
    CoUninitialize();
}

void HostTest::destroyHost() {
    wmi_.reset();
    host_.reset();
}

void HostTest::load(const std::wstring& mof) {
    LoadError error;
    EXPECT_TRUE(host_->loadText(mof, L"test", error)) << "line " << error.line;
}

void HostTest::loadSample() {
    load(kSampleMof);
}

ComOwner<IWbemLocator> HostTest::createLocator() {
    void* locator = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               &locator),
              S_OK);
    return ComOwner<IWbemLocator>(static_cast<IWbemLocator*>(locator));
}

ComOwner<IWbemServices> HostTest::connect(const wchar_t* nameSpace) {
    const ComOwner<IWbemLocator> locator = createLocator();
    IWbemServices* services = nullptr;
    EXPECT_EQ(locator->ConnectServer(Text(nameSpace), nullptr, nullptr, nullptr, 0, nullptr,
                                     nullptr, &services),
              S_OK);
    return ComOwner<IWbemServices>(services);
}

IWbemServices& HostTest::wmi() {
    if (wmi_ == nullptr) wmi_ = connect();
    return *wmi_;
}

Object HostTest::object(const wchar_t* path) {
    IWbemClassObject* found = nullptr;
    wmi().GetObject(Text(path), 0, nullptr, &found, nullptr);
    return Object(found);
}

Object HostTest::spawn(const wchar_t* className) {
    IWbemClassObject* spawned = nullptr;
    EXPECT_EQ(object(className)->SpawnInstance(0, &spawned), S_OK);
    return Object(spawned);
}

Object HostTest::inParameters(const wchar_t* className, const wchar_t* method) {
    IWbemClassObject* signature = nullptr;
    EXPECT_EQ(object(className)->GetMethod(method, 0, &signature, nullptr), S_OK);
    const Object owned(signature);
    IWbemClassObject* parameters = nullptr;
    EXPECT_EQ(owned->SpawnInstance(0, &parameters), S_OK);
    return Object(parameters);
}

Results HostTest::enumerate(const wchar_t* className, LONG flags) {
    IEnumWbemClassObject* results = nullptr;
    EXPECT_EQ(wmi().CreateInstanceEnum(Text(className), flags, nullptr, &results), S_OK);
    return Results(results);
}

std::vector<std::wstring> HostTest::names(IEnumWbemClassObject& results) {
    std::vector<std::wstring> found;
    for (;;) {
        IWbemClassObject* next = nullptr;
        ULONG returned = 0;
        if (results.Next(kInfinite, 1, &next, &returned) != S_OK) return found;
        const Object owned(next);
        OwnedVariant name = get(*owned, L"Name");
        found.push_back(textOf(name));
    }
}

}  // namespace quista::test

#include "tests/luns/windows_disks/windows_disks_test.h"

#include <windows.h>

#include <objbase.h>

#include <sstream>

#include "tests/support/text.h"

namespace quista::test {

MofObject drive(unsigned long index, const std::wstring& identifier, unsigned long long size) {
    return MofObject(kDriveClass)
        .text(L"DeviceID", drivePath(index))
        .unsignedNumber(L"Index", index)
        .text(L"PNPDeviceID", identifier)
        .unsignedNumber(L"Size", size);
}

MofObject medium(const std::wstring& serial, const std::wstring& tag) {
    return MofObject(kMediaClass).text(L"Tag", tag).text(L"SerialNumber", serial);
}

std::wstring drivePath(unsigned long index) {
    return L"\\\\.\\PHYSICALDRIVE" + std::to_wstring(index);
}

void PrintTo(const Disk& disk, std::ostream* out) {
    *out << "disk " << disk.number << " of " << disk.size << " bytes";
}

DiskMap::~DiskMap() {
    clear();
}

std::map<std::wstring, Disk> DiskMap::disks() const {
    std::map<std::wstring, Disk> disks;
    for (const auto& [key, data] : map_) disks[key] = {data->DiskNumber, data->Size};
    return disks;
}

void DiskMap::clear() {
    for (const auto& [key, data] : map_) CoTaskMemFree(data);
    map_.clear();
}

std::string queryPlace(const std::wstring& className) {
    const std::string name = narrow(className);
    return "KORVADSMGetAll" + name + " : ExecQuery(SELECT * FROM " + name + ")";
}

std::string nextPlace(const std::wstring& className) {
    return "KORVADSMGetAll" + narrow(className) + ": IEnumWbemClassObject::Next";
}

std::string exceptionPlace(const std::wstring& className) {
    return "KORVADSMGetAll" + narrow(className) + ": pIWbemClassObject";
}

LogLines endOf(const std::wstring& className) {
    return {{nextPlace(className), kEnd}};
}

WindowsDisksTest::WindowsDisksTest() {
    host.loadLunClasses();
    host.loadClasses(L"disks");
}

void WindowsDisksTest::openWith(const std::vector<MofObject>& disks) {
    for (const MofObject& disk : disks) host.add(disk, kCimv2);
    openSession();
}

std::vector<std::string> WindowsDisksTest::calls(const std::wstring& method) const {
    std::vector<std::string> texts;
    for (const simulator::CallRecord& call : host->trace()) {
        if (!method.empty() && call.method != method) continue;
        std::ostringstream text;
        text << narrow(call.method) << " " << narrow(call.className);
        if (call.method == L"Get") text << "." << narrow(call.detail);
        if (call.method == L"ExecQuery") text << " " << narrow(call.detail);
        if (call.method == L"Next") text << " 0x" << std::hex << call.result;
        texts.push_back(text.str());
    }
    return texts;
}

}  // namespace quista::test

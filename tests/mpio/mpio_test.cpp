#include "tests/mpio/mpio_test.h"

#include <windows.h>

#include <objbase.h>

#include <algorithm>

namespace quista::test {

namespace {

constexpr std::size_t kDrivesOffset = offsetof(_DSM_DISKS, DriveInfo);
constexpr std::size_t kListOffset = offsetof(_MPIO_DESCRIPTOR_LIST, Descriptor);

}  // namespace

HRESULT asResult(unsigned long code) {
    return static_cast<HRESULT>(code);
}

MofObject drive(const std::wstring& serialNumber, const std::wstring& dsmName, unsigned paths) {
    return MofObject(kDriveClass)
        .number(L"NumberPaths", paths)
        .text(L"Name", L"MPIO Disk")
        .text(L"SerialNumber", serialNumber)
        .text(L"DsmName", dsmName);
}

MofObject diskInfo(const std::vector<MofObject>& drives, const std::wstring& instance) {
    return MofObject(kDiskClass)
        .text(L"InstanceName", instance)
        .boolean(L"Active", true)
        .number(L"NumberDrives", static_cast<std::int64_t>(drives.size()))
        .objects(L"DriveInfo", drives);
}

MofObject path(std::uint64_t identifier, const Address& address) {
    return MofObject(kPathClass)
        .unsignedNumber(L"PathIdentifier", identifier)
        .object(L"ScsiAddress", MofObject(kAddressClass)
                                    .number(L"PortNumber", address.port)
                                    .number(L"ScsiPathId", address.bus)
                                    .number(L"TargetId", address.target)
                                    .number(L"Lun", address.lun));
}

MofObject descriptor(const std::wstring& deviceName, const std::vector<MofObject>& paths) {
    return MofObject(kDescriptorClass)
        .text(L"InstanceName", L"descriptor of " + deviceName)
        .boolean(L"Active", true)
        .number(L"NumberPdos", static_cast<std::int64_t>(paths.size()))
        .text(L"DeviceName", deviceName)
        .objects(L"PdoInformation", paths);
}

// ---- DiskRecord

DiskRecord::DiskRecord(std::size_t drives)
    : buffer_(kDrivesOffset + drives * sizeof(_DSM_DRIVEINFO)) {}

bool DiskRecord::untouchedFrom(std::size_t index) const {
    const std::size_t offset = kDrivesOffset + index * sizeof(_DSM_DRIVEINFO);
    return buffer_.untouched(offset, buffer_.size() - offset);
}

bool DiskRecord::reservedUntouched() const {
    return untouchedBytes(&get()->Reserved, sizeof get()->Reserved);
}

bool DiskRecord::untouchedBytes(const void* begin, std::size_t length) const {
    const auto offset = static_cast<const unsigned char*>(begin) - buffer_.data();
    return buffer_.untouched(static_cast<std::size_t>(offset), length);
}

// ---- DescriptorRecord

DescriptorRecord::DescriptorRecord(std::size_t descriptors)
    : buffer_(kListOffset + descriptors * sizeof(_MPIO_GET_DESCRIPTOR*)) {}

DescriptorRecord::~DescriptorRecord() {
    const std::size_t room = (buffer_.size() - kListOffset) / sizeof(_MPIO_GET_DESCRIPTOR*);
    if (count() <= room) free(count());
}

bool DescriptorRecord::countUntouched() const {
    return buffer_.untouched(0, kListOffset);
}

bool DescriptorRecord::untouchedFrom(std::size_t index) const {
    const std::size_t offset = kListOffset + index * sizeof(_MPIO_GET_DESCRIPTOR*);
    return buffer_.untouched(offset, buffer_.size() - offset);
}

void DescriptorRecord::free(std::size_t descriptors) {
    for (std::size_t i = 0; i < descriptors; ++i) CoTaskMemFree(get()->Descriptor[i]);
    buffer_.fill();
}

// ---- MpioTest

std::wstring callText(const simulator::CallRecord& call) {
    std::wstring text = call.method + L" " + call.className;
    if (call.method == L"Get") text += L"." + call.detail;
    return text;
}

std::vector<std::wstring> MpioTest::calls() const {
    std::vector<std::wstring> texts;
    for (const simulator::CallRecord& call : host->trace()) {
        if (call.method != L"QueryInterface") texts.push_back(callText(call));
    }
    return texts;
}

std::size_t MpioTest::countCalls(const std::wstring& call) const {
    const std::vector<std::wstring> made = calls();
    return static_cast<std::size_t>(std::ranges::count(made, call));
}

}  // namespace quista::test

// The Windows disks of root\cimv2, by serial number and by device identifier.
#include <windows.h>

#include <wbemcli.h>

#include <algorithm>
#include <array>
#include <map>
#include <new>
#include <string>

#include "frame/error_log.h"
#include "frame/guard.h"
#include "frame/session.h"
#include "frame/task_memory.h"
#include "luns/disk_instances.h"
#include "quista/frame.h"
#include "quista/luns.h"
#include "wmi/com_ref.h"
#include "wmi/query.h"
#include "wmi/results.h"

namespace quista {

namespace {

using DiskMap = std::map<std::wstring, _WMIDISKDRIVEDATA*>;

constexpr ULONG kBatch = 20;

/// One of the two Windows classes: how it is asked for, read and reported.
struct DiskClass {
    const wchar_t* query;
    const wchar_t* queryPlace;
    const wchar_t* nextPlace;
    const wchar_t* exceptionPlace;
    HRESULT (*parse)(IWbemClassObject*, DiskInstance&);
    std::wstring DiskInstance::*key;
    bool hasSize;
};

constexpr DiskClass kPhysicalMedia = {
    L"SELECT * FROM Win32_PhysicalMedia",
    L"KORVADSMGetAllWin32_PhysicalMedia : ExecQuery(SELECT * FROM Win32_PhysicalMedia)",
    L"KORVADSMGetAllWin32_PhysicalMedia: IEnumWbemClassObject::Next",
    L"KORVADSMGetAllWin32_PhysicalMedia: pIWbemClassObject",
    ParseWin32_PhysicalMedia,
    &DiskInstance::serialNumber,
    false,
};

constexpr DiskClass kDiskDrives = {
    L"SELECT * FROM Win32_DiskDrive",
    L"KORVADSMGetAllWin32_DiskDrive : ExecQuery(SELECT * FROM Win32_DiskDrive)",
    L"KORVADSMGetAllWin32_DiskDrive: IEnumWbemClassObject::Next",
    L"KORVADSMGetAllWin32_DiskDrive: pIWbemClassObject",
    ParseWin32_DiskDrive,
    &DiskInstance::pnpDeviceId,
    true,
};

/// The objects of one call of Next.
class Batch {
  public:
    HRESULT fetch(IEnumWbemClassObject* enumerator) {
        std::array<IWbemClassObject*, kBatch> raw{};
        ULONG returned = 0;
        const HRESULT result =
            enumerator != nullptr
                ? enumerator->Next(static_cast<LONG>(WBEM_INFINITE), kBatch, raw.data(), &returned)
                : E_POINTER;
        for (ULONG i = 0; i < kBatch; ++i) objects_[i] = ComRef<IWbemClassObject>(raw[i]);
        size_ = std::min(returned, kBatch);
        return result == S_OK && size_ == 0 ? E_POINTER : result;
    }

    ULONG size() const { return size_; }
    IWbemClassObject* at(ULONG index) const { return objects_[index].get(); }
    void release(ULONG index) { objects_[index].reset(); }

  private:
    std::array<ComRef<IWbemClassObject>, kBatch> objects_;
    ULONG size_ = 0;
};

/// Adds one instance to the map. A key that comes twice gets a new block; the old one is not freed.
void addInstance(const DiskClass& kind, IWbemClassObject* object, DiskMap& map, long& count) {
    DiskInstance disk;
    if (FAILED(kind.parse(object, disk))) return;
    UniqueTaskMemory<_WMIDISKDRIVEDATA> data(
        allocateTaskMemory<_WMIDISKDRIVEDATA>(sizeof(_WMIDISKDRIVEDATA)));
    if (data == nullptr) throw std::bad_alloc();
    data->DiskNumber = disk.diskNumber;
    if (kind.hasSize) data->Size = disk.size;
    map[disk.*kind.key] = data.get();
    static_cast<void>(data.release());
    ++count;
}

DWORD statusAfterLast(const DiskClass& kind, HRESULT next) {
    if (next == kNotFound) return DSM_WMI_NOT_SUPPORTED;
    if (next == kTimedOut && kind.hasSize) return DSM_LUN_INFO_FAILED;
    return DSM_SUCCESS;
}

DWORD endOfEnumeration(const DiskClass& kind, HRESULT next) {
    writeLog(kind.nextPlace, static_cast<DWORD>(next));
    if (!kind.hasSize) OutputDebugStringW(L"Returned error!!");
    return statusAfterLast(kind, next);
}

DWORD collect(const DiskClass& kind, DiskMap& map, long& count) {
    count = 0;
    ComRef<IEnumWbemClassObject> enumerator;
    if (logFailure(execQuery(gCimv2Services, enumerator.receive(), kind.query), kind.queryPlace) !=
        S_OK) {
        return DSM_WMI_FAILURE;
    }
    for (;;) {
        Batch batch;
        const HRESULT next = batch.fetch(enumerator.get());
        // A short last batch comes with the end of the enumeration and still counts.
        if (next != S_OK && batch.size() == 0) return endOfEnumeration(kind, next);
        try {
            for (ULONG i = 0; i < batch.size(); ++i) {
                addInstance(kind, batch.at(i), map, count);
                batch.release(i);
            }
        } catch (...) {
            ReportError(kind.exceptionPlace, 0);
            return DSM_SUCCESS;
        }
    }
}

}  // namespace

}  // namespace quista

unsigned long KORVADSMGetAllWin32_PhysicalMedia(std::map<std::wstring, _WMIDISKDRIVEDATA*>* media,
                                                long& count) {
    using namespace quista;
    return guarded(DSM_WMI_FAILURE, [&] { return collect(kPhysicalMedia, *media, count); });
}

unsigned long KORVADSMGetAllWin32_DiskDrive(std::map<std::wstring, _WMIDISKDRIVEDATA*>* drives,
                                            long& count) {
    using namespace quista;
    return guarded(DSM_WMI_FAILURE, [&] { return collect(kDiskDrives, *drives, count); });
}

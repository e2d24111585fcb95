// The descriptors of all MPIO disks.
#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <limits>

#include "frame/error_log.h"
#include "frame/guard.h"
#include "frame/task_memory.h"
#include "mpio/descriptor_block.h"
#include "mpio/descriptor_parser.h"
#include "quista/frame.h"
#include "quista/mpio.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/results.h"

namespace quista {

namespace {

constexpr const wchar_t* kFunction = L"DSMGetMpioDescr";

/// Takes the next instance; the end and failures leave a line, a missing class leaves two.
HRESULT nextDescriptor(IEnumWbemClassObject* instances, ComRef<IWbemClassObject>& instance) {
    const HRESULT result = nextInstance(instances, instance);
    if (result == kInvalidClass) ReportError(kFunction, static_cast<DWORD>(result));
    if (result != S_OK) {
        writeLog(L"DSMGetMpioDescr: IEnumWbemClassObject::Next", static_cast<DWORD>(result));
    }
    return result;
}

/// Path entries of a descriptor's block.
LONG entriesFor(unsigned long numberOfPaths) {
    constexpr unsigned long kMaximum = std::numeric_limits<LONG>::max() - 1;
    return static_cast<LONG>(std::min(numberOfPaths, kMaximum)) + 1;
}

/// Frees every stored descriptor, the last first. Kept: the count is taken down once more than
/// there were descriptors and ends as 0xFFFFFFFF, and the freed pointers stay in the list.
void freeAll(_MPIO_DESCRIPTOR_LIST& list, unsigned long& counter) {
    while (counter-- > 0) CoTaskMemFree(list.Descriptor[counter]);
}

DWORD readDescriptors(_MPIO_DESCRIPTOR_LIST& list) {
    ComRef<IEnumWbemClassObject> instances;
    if (logFailure(enumerateClass(L"MPIO_GET_DESCRIPTOR", instances),
                   L"DSMGetMpioDescr:CreateInstanceEnum") != S_OK) {
        list.NumberDescriptors = 0;
        return DSM_WMI_FAILURE;
    }

    DWORD status = DSM_WMI_FAILURE;
    unsigned long counter = 0;
    ComRef<IWbemClassObject> instance;
    HRESULT next;
    while ((next = nextDescriptor(instances.get(), instance)) == S_OK) {
        // Kept: a call that breaks off here releases neither enumerator nor instance and does not
        // write the count.
        const auto breakOff = [&](DWORD logged, DWORD result) {
            ReportError(kFunction, logged);
            instances.keepOnPurpose();
            instance.keepOnPurpose();
            return result;
        };
        UniqueVariant paths;
        if (getProperty(instance.get(), L"NumberPdos", paths) != S_OK) {
            return breakOff(DSM_NO_MPIO_PATHS, DSM_WMI_FAILURE);
        }
        UniqueTaskMemory<_MPIO_GET_DESCRIPTOR> descriptor(allocateDescriptor(paths.rawLong()));
        if (descriptor == nullptr) {
            return breakOff(DSM_NULL_MPIO_DESCRIPTOR, DSM_NULL_MPIO_DESCRIPTOR);
        }
        status = ParseMpioDescr(instance.get(), descriptor.get(), entriesFor(paths.rawLong()));
        list.Descriptor[counter++] = descriptor.release();
        if (status != DSM_SUCCESS) {
            ReportError(kFunction, DSM_NO_MEMORY);
            freeAll(list, counter);
            // Kept: the instance that could not be parsed is not released.
            instance.keepOnPurpose();
            break;
        }
    }
    if (next == kInvalidClass) status = DSM_WMI_NOT_SUPPORTED;
    list.NumberDescriptors = counter;
    return status;
}

}  // namespace

}  // namespace quista

unsigned long DSMGetMpioDescr(_MPIO_DESCRIPTOR_LIST* list) {
    using namespace quista;
    return guarded(DSM_WMI_FAILURE, [&] { return readDescriptors(*list); });
}

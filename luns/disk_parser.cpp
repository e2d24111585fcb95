// A LUN instance as one record with its paths.
#include <windows.h>

#include <wbemcli.h>

#include <algorithm>
#include <string>

#include "frame/console.h"
#include "frame/guard.h"
#include "luns/lun_parser.h"
#include "luns/path_parser.h"
#include "quista/frame.h"
#include "quista/luns.h"
#include "wmi/instance_names.h"
#include "wmi/property.h"
#include "wmi/safe_arrays.h"
#include "wmi/text_field.h"

namespace quista {

namespace {

/// A LUN's block and the path records that it has room for.
struct LunBlock {
    _KORVADSM_DISKINFO* info;
    LONG room;
};

/// True when the record can take every path object: consistent data never has more objects than
/// paths, and such an excess is refused before anything is parsed.
bool fits(LONG objects, const LunBlock& block) {
    const LONG counted = static_cast<LONG>(std::min(block.info->NumberPaths, 0x7FFFFFFFul));
    return objects <= counted && objects <= block.room;
}

DWORD parseObjects(const VARIANT& paths, ObjectTable& objects, const LunBlock& block) {
    const LONG found = boundsOf(paths).count();
    if (static_cast<unsigned long>(found) != block.info->NumberPaths) {
        traceFormatted(
            L"WARNING: Inconsistent information: NumberPaths=%d, number of Path object=%d\n",
            block.info->NumberPaths, found);
    }
    if (!fits(found, block)) return DSM_WMI_FAILURE;

    for (LONG i = 0, count = objects.fill(paths); i < count; ++i) {
        const DWORD status = ParsePathInfoKORVA(objects.at(i), &block.info->Paths[i]);
        objects.release(i);
        if (status != DSM_SUCCESS) {
            OutputDebugStringW(L"ParseDiskInfoKORVA - ParsePathInfoKORVA failed");
            // Kept: the remaining objects are not released, nor is the table freed.
            objects.keepOnPurpose();
            return status;
        }
    }
    return DSM_SUCCESS;
}

void copyInstanceName(IWbemClassObject* lun, _KORVADSM_DISKINFO& info) {
    std::wstring name;
    if (GetEscapedInstanceName(&lun, name)) copyToField(info.InstanceName, name.c_str());
}

DWORD parsePaths(IWbemClassObject* lun, const LunBlock& block) {
    UniqueVariant count;
    if (getOrLog(lun, L"NumberOfPaths", count, L"ParseDiskInfoKORVA::Get(NumberPaths)") != S_OK) {
        return DSM_SUCCESS;
    }
    block.info->NumberPaths = count.rawLong();

    ObjectTable objects(block.info->NumberPaths);
    if (!objects.valid()) {
        ReportError(L"ParseDiskInfoKORVA", DSM_NO_MEMORY);
        return DSM_NO_MEMORY;
    }
    UniqueVariant paths;
    if (getOrLog(lun, L"Paths", paths, L"ParseDiskInfoKORVA::Get(PathInfo)") != S_OK) {
        OutputDebugStringW(L"ParseDiskInfoKORVA: can't get PathInfo\n");
        return DSM_SUCCESS;
    }
    if (paths.type() != (VT_ARRAY | VT_UNKNOWN)) {
        traceLine(L"ERROR: PathInfo is not an ARRAY!!\n");
        OutputDebugStringW(L"ParseDiskInfoKORVA: can't get PathInfo object.\n");
        return DSM_WMI_FAILURE;
    }
    const DWORD status = parseObjects(paths.get(), objects, block);
    if (status == DSM_SUCCESS) copyInstanceName(lun, *block.info);
    return status;
}

}  // namespace

}  // namespace quista

unsigned long ParseDiskInfoKORVA(IWbemClassObject* lun, _KORVADSM_DISKINFO** out) {
    using namespace quista;
    return guarded(DSM_WMI_PARSING_ERROR, [&]() -> DWORD {
        LONG room = 0;
        // Whatever comes later, the block is the caller's.
        const DWORD status = ParseLunInfoKORVA(lun, out, &room);
        return status == DSM_SUCCESS ? parsePaths(lun, {*out, room}) : status;
    });
}

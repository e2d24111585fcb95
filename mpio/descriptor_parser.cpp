#include "mpio/descriptor_parser.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <iterator>

#include "frame/console.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/safe_arrays.h"
#include "wmi/variant_text.h"

namespace quista {

namespace {

constexpr std::size_t kMaximumPaths = 1000;

/// Copies the quoted name without a terminator: the block is zeroed, and a name that fills the
/// field goes without one.
void copyDeviceName(UniqueVariant& value, _MPIO_GET_DESCRIPTOR& descriptor) {
    const UniqueText text = quotedText(value);
    if (text == nullptr) return;
    const std::size_t length = std::min(std::wcslen(text.get()), std::size(descriptor.DeviceName));
    std::wmemcpy(descriptor.DeviceName, text.get(), length);
}

DWORD parsePaths(const VARIANT& paths, _MPIO_GET_DESCRIPTOR& descriptor, LONG room) {
    ObjectTable objects(kMaximumPaths);
    const LONG count = objects.fill(paths);
    if (static_cast<unsigned long>(count) != descriptor.NumberPdos) {
        traceFormatted(
            L"WARNING: Inconsistent information: NumberPdos=%d, number of Pdo object=%d\n",
            descriptor.NumberPdos, count);
    }
    DWORD status = DSM_WMI_PARSING_ERROR;
    for (LONG i = 0; i < std::min(count, room); ++i) {
        status = ParsePdoInfo(objects.at(i), &descriptor.PdoInformation[i]);
        objects.release(i);
        if (status != DSM_SUCCESS) break;
    }
    return status;
}

/// Reads one byte of a SCSI address.
bool readByte(IWbemClassObject* address, const wchar_t* name, unsigned char& byte,
              const wchar_t* place) {
    UniqueVariant value;
    if (getOrLog(address, name, value, place) != S_OK) return false;
    byte = value.rawByte();
    return true;
}

}  // namespace

DWORD ParseMpioDescr(IWbemClassObject* instance, _MPIO_GET_DESCRIPTOR* descriptor, LONG room) {
    UniqueVariant count;
    if (getOrLog(instance, L"NumberPdos", count, L"ParseMpioDescr::Get(NumberPdos)") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    descriptor->NumberPdos = count.rawLong();

    UniqueVariant name;
    if (getOrLog(instance, L"DeviceName", name, L"ParseMpioDescr::Get(DeviceName)") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    copyDeviceName(name, *descriptor);

    UniqueVariant paths;
    if (getOrLog(instance, L"PdoInformation", paths, L"ParseMpioDescr::Get(PdoInformation)") !=
        S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    if (paths.type() != (VT_ARRAY | VT_UNKNOWN)) {
        traceLine(L"ERROR: PdoInformation is not an ARRAY!!\n");
        return DSM_WMI_FAILURE;
    }
    return parsePaths(paths.get(), *descriptor, room);
}

DWORD ParsePdoInfo(IWbemClassObject* path, _PDO_INFORMATION* entry) {
    UniqueVariant identifier;
    if (getOrLog(path, L"PathIdentifier", identifier, L"ParsePdoInfo::Get(PathIdentifier)") !=
        S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    entry->PathIdentifier =
        static_cast<unsigned long long>(_wtoi64(stringOf(identifier.get()).c_str()));

    ComRef<IWbemClassObject> address;
    if (getObjectOrLog(path, L"ScsiAddress", address, L"ParsePdoInfo::Get(ScsiAddress)") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    _MPIO_SCSI_ADDRESS& scsi = entry->ScsiAddress;
    IWbemClassObject* from = address.get();
    const bool complete =
        readByte(from, L"PortNumber", scsi.PortNumber, L"ParsePdoInfo::Get(PortNumber)") &&
        readByte(from, L"ScsiPathId", scsi.ScsiPathId, L"ParsePdoInfo::Get(ScsiPathId)") &&
        readByte(from, L"TargetId", scsi.TargetId, L"ParsePdoInfo::Get(TargetId)") &&
        readByte(from, L"Lun", scsi.Lun, L"ParsePdoInfo::Get(Lun)");
    return complete ? DSM_SUCCESS : DSM_WMI_PARSING_ERROR;
}

}  // namespace quista

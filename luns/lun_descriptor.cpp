#include "luns/lun_descriptor.h"

#include <algorithm>

#include "frame/console.h"
#include "mpio/descriptor_block.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

/// Reads the properties of one object in order, until the first that cannot be read.
class OrderedReader {
  public:
    explicit OrderedReader(IWbemClassObject* object) : object_(object) {}

    bool number(const wchar_t* name, unsigned long& field, const wchar_t* place) {
        if (read(name, place)) field = value_.rawLong();
        return complete_;
    }

    bool byte(const wchar_t* name, unsigned char& field, const wchar_t* place) {
        if (read(name, place)) field = value_.rawByte();
        return complete_;
    }

    template <std::size_t Count>
    bool bytes(const wchar_t* name, unsigned char (&field)[Count], const wchar_t* place) {
        if (read(name, place)) copyFirstBytes(value_.get(), field, static_cast<LONG>(Count));
        return complete_;
    }

    /// 1 for a true boolean, else 0.
    template <typename Field>
    bool flag(const wchar_t* name, Field& field, const wchar_t* place) {
        if (read(name, place)) field = value_.rawBoolean() == VARIANT_TRUE ? 1 : 0;
        return complete_;
    }

    bool object(const wchar_t* name, ComRef<IWbemClassObject>& embedded, const wchar_t* place) {
        if (complete_) complete_ = getObjectOrLog(object_, name, embedded, place) == S_OK;
        return complete_;
    }

  private:
    bool read(const wchar_t* name, const wchar_t* place) {
        if (complete_) complete_ = getOrLog(object_, name, value_, place) == S_OK;
        return complete_;
    }

    IWbemClassObject* object_;
    UniqueVariant value_;
    bool complete_ = true;
};

bool readScsiAddress(OrderedReader& path, _MPIO_SCSI_ADDRESS& scsi) {
    ComRef<IWbemClassObject> embedded;
    if (!path.object(L"ScsiAddress", embedded, L"IWbemClassObject::Get(ScsiAddress)")) return false;
    OrderedReader address(embedded.get());
    address.byte(L"PortNumber", scsi.PortNumber, L"IWbemClassObject::Get(PortNumber)");
    address.byte(L"ScsiPathId", scsi.ScsiPathId, L"IWbemClassObject::Get(ScsiPathId)");
    address.byte(L"TargetId", scsi.TargetId, L"IWbemClassObject::Get(TargetId)");
    return address.byte(L"Lun", scsi.Lun, L"IWbemClassObject::Get(Lun)");
}

/// Reads every property whatever the path's protocol. Kept: state, primary flag and protocol report
/// under the place of the LUN number.
bool readPath(OrderedReader& path, _DSM_PATHINFO& info) {
    constexpr const wchar_t* kLunPlace = L"IWbemClassObject::Get(Lun)";
    path.number(L"PathState", info.PathState, kLunPlace);
    path.flag(L"PrimaryPath", info.PrimaryPath, kLunPlace);
    path.number(L"Protocol", info.Protocol, kLunPlace);
    path.bytes(L"TargetFcpNodename", info.TargetFcpNodename,
               L"ParsePathInfoKORVA::Get(TargetFcpNodename)");
    path.bytes(L"TargetFcpPortname", info.TargetFcpPortname,
               L"ParsePathInfoKORVA::Get(TargetFcpPortname)");
    path.flag(L"Proxy", info.Proxy, L"ParsePathInfoKORVA::Get(ProxyPathInfo)");
    return path.number(L"TargetIPv4Address", info.TargetIPv4Address,
                       L"ParsePathInfoKORVA::Get(TargetIPv4Address)");
}

DWORD parsePath(IWbemClassObject* object, _PDO_INFORMATION& entry, _DSM_PATHINFO& info) {
    OrderedReader path(object);
    unsigned long pathId = 0;
    if (!path.number(L"PathId", pathId, L"IWbemClassObject::Get(PathId)")) {
        return DSM_WMI_PARSING_ERROR;
    }
    entry.PathIdentifier = pathId;
    const bool complete = readScsiAddress(path, entry.ScsiAddress) && readPath(path, info);
    return complete ? DSM_SUCCESS : DSM_WMI_PARSING_ERROR;
}

DWORD parsePaths(const VARIANT& paths, _MPIO_GET_DESCRIPTOR& descriptor, _DSM_DISKINFO* diskInfo) {
    // The block holds one path more than the count; what goes beyond is not fetched.
    const unsigned long room = std::max(descriptor.NumberPdos, descriptor.NumberPdos + 1);
    ObjectTable objects(roomFor(paths, room));
    for (LONG i = 0, count = objects.fill(paths); i < count; ++i) {
        // The caller's record has room for the paths counted, and may be missing.
        const bool wanted =
            diskInfo != nullptr && static_cast<unsigned long>(i) < descriptor.NumberPdos;
        _DSM_PATHINFO unwanted{};
        const DWORD status = parsePath(objects.at(i), descriptor.PdoInformation[i],
                                       wanted ? diskInfo->PathInfo[i] : unwanted);
        if (status != DSM_SUCCESS) return status;
    }
    return DSM_SUCCESS;
}

}  // namespace

DWORD ParseMpioDescrKORVA(IWbemClassObject* lun, _MPIO_GET_DESCRIPTOR** descriptor,
                          _DSM_DISKINFO* diskInfo) {
    *descriptor = nullptr;
    UniqueVariant count;
    if (getOrLog(lun, L"NumberOfPaths", count, L"IWbemClassObject::Get(NumberPdos)") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    *descriptor = allocateDescriptor(count.rawLong());
    if (*descriptor == nullptr) return DSM_NULL_MPIO_DESCRIPTOR;
    (*descriptor)->NumberPdos = count.rawLong();

    UniqueVariant paths;
    if (getOrLog(lun, L"Paths", paths, L"IWbemClassObject::Get(PdoInformation)") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    if (paths.type() != (VT_ARRAY | VT_UNKNOWN)) {
        traceLine(L"ERROR: PdoInformation is not an ARRAY!!\n");
        return DSM_WMI_FAILURE;
    }
    const DWORD status = parsePaths(paths.get(), **descriptor, diskInfo);
    if (status != DSM_SUCCESS) return status;

    UniqueVariant policy;
    static_cast<void>(getProperty(lun, L"KorvaDSMLoadBalancePolicy", policy));
    if (diskInfo != nullptr) diskInfo->LoadBalancePolicy = policy.rawLong();
    return DSM_SUCCESS;
}

}  // namespace quista

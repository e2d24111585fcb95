#include "luns/path_parser.h"

#include "frame/error_log.h"
#include "quista/frame.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/readers.h"
#include "wmi/safe_arrays.h"
#include "wmi/text_field.h"
#include "wmi/variant_text.h"

namespace quista {

namespace {

constexpr unsigned char kFibreChannel = 1;
constexpr unsigned char kIscsi = 2;

void readScsiAddress(IWbemClassObject* path, _KORVADSM_PATHINFO& record) {
    ComRef<IWbemClassObject> address;
    if (getObjectOrLog(path, L"ScsiAddress", address, L"ParsePathInfoKORVA:Get(scsiAddr) failed") ==
        S_OK) {
        DsmGetPathScsiAddress(address.get(), &record);
    }
}

template <std::size_t Capacity>
bool readText(IWbemClassObject* path, const wchar_t* name, wchar_t (&field)[Capacity],
              const wchar_t* place) {
    UniqueVariant value;
    if (getOrLog(path, name, value, place) != S_OK) return false;
    const UniqueText text = quotedText(value);
    copyToField(field, text.get());
    return true;
}

template <std::size_t Capacity>
bool readBytes(IWbemClassObject* path, const wchar_t* name, unsigned char (&field)[Capacity],
               const wchar_t* place) {
    UniqueVariant value;
    if (getOrLog(path, name, value, place) != S_OK) return false;
    copyFirstBytes(value.get(), field, Capacity);
    return true;
}

bool readFlag(IWbemClassObject* path, const wchar_t* name, unsigned char& flag,
              const wchar_t* place) {
    UniqueVariant value;
    if (getOrLog(path, name, value, place) != S_OK) return false;
    flag = value.rawBoolean() == VARIANT_TRUE ? 1 : 0;
    return true;
}

DWORD readFibreChannel(IWbemClassObject* path, _KORVADSM_PATHINFO& record) {
    const bool complete = readText(path, L"TargetAdapterName", record.TargetAdapterName,
                                   L"ParsePathInfoKORVA::Get(TargetAdapterName)") &&
                          readBytes(path, L"TargetFcpNodename", record.TargetFcpNodename,
                                    L"ParsePathInfoKORVA::Get(TargetFcpNodename)") &&
                          readBytes(path, L"TargetFcpPortname", record.TargetFcpPortname,
                                    L"ParsePathInfoKORVA::Get(TargetFcpPortname)");
    return complete ? DSM_SUCCESS : DSM_WMI_PARSING_ERROR;
}

DWORD readIPv6Address(IWbemClassObject* path, _KORVADSM_PATHINFO& record) {
    UniqueVariant value;
    HRESULT status = S_OK;
    // Kept: the result only narrows a status that is still 0, so a failed read never reports
    // itself; the type of the value gives it away instead.
    status &= getProperty(path, L"TargetIPv6Address", value);
    if (logFailure(status, L"ParsePathInfoKORVA::Get(TargetIPAddress)") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    if (value.type() != (VT_ARRAY | VT_UI1)) {
        ReportError(L"ParsePathInfoKORVA::targetIPv6Address type is invalid",
                    DSM_WMI_PARSING_ERROR);
        return DSM_WMI_FAILURE;
    }
    copyFirstBytes(value.get(), record.TargetIPv6Address, sizeof(record.TargetIPv6Address));
    return DSM_SUCCESS;
}

DWORD readIscsi(IWbemClassObject* path, _KORVADSM_PATHINFO& record) {
    record.TargetPortalGroupId = DsmGetPathInfoLval(path, L"TargetPortalGroupId");
    record.TargetTCPPortNumber = DsmGetPathInfoLval(path, L"TargetTCPPortNumber");
    record.TargetIPv4Address = DsmGetPathInfoLval(path, L"TargetIPv4Address");
    if (record.TargetIPv4Address == 0) {
        const DWORD status = readIPv6Address(path, record);
        if (status != DSM_SUCCESS) return status;
    }
    const bool complete = readText(path, L"TargetiSCSINodeName", record.TargetiSCSINodeName,
                                   L"ParsePathInfoKORVA::Get(TargetiSCSINodeName)") &&
                          readText(path, L"TargetiSCSIAdapterName", record.TargetiSCSIAdapterName,
                                   L"ParsePathInfoKORVA::Get(TargetiSCSIAdapterName)");
    return complete ? DSM_SUCCESS : DSM_WMI_PARSING_ERROR;
}

DWORD readProtocolFields(IWbemClassObject* path, _KORVADSM_PATHINFO& record) {
    if ((record.Protocol & kFibreChannel) != 0) return readFibreChannel(path, record);
    if ((record.Protocol & kIscsi) != 0) return readIscsi(path, record);
    return DSM_SUCCESS;
}

}  // namespace

DWORD ParsePathInfoKORVA(IWbemClassObject* path, _KORVADSM_PATHINFO* record) {
    if (path == nullptr || record == nullptr) {
        ReportError(L"ParsePathInfoKORVA:PathInfoObj is empty", DSM_WMI_PARSING_ERROR);
        return DSM_WMI_PARSING_ERROR;
    }
    readScsiAddress(path, *record);
    record->PathState = DsmGetPathInfoBval(path, L"PathState");
    record->PathWeight = DsmGetPathInfoLval(path, L"PathWeight");
    record->DsmId = DsmGetPathInfoLval(path, L"DsmId");
    record->PathId = DsmGetPathInfoLval(path, L"PathId");
    record->ALUASupport = DsmGetPathInfoLval(path, L"ALUASupport");
    record->TargetPortGroupState = DsmGetPathInfoLval(path, L"TargetPortGroupState");
    record->Protocol = DsmGetPathInfoBval(path, L"Protocol");

    const DWORD status = readProtocolFields(path, *record);
    if (status != DSM_SUCCESS) return status;

    const bool complete =
        readFlag(path, L"Proxy", record->Proxy, L"ParsePathInfoKORVA::Get(ProxyPathInfo)") &&
        readFlag(path, L"PrimaryPath", record->PrimaryPath,
                 L"ParsePathInfoKORVA::Get(PrimaryPathInfo)");
    return complete ? DSM_SUCCESS : DSM_WMI_PARSING_ERROR;
}

}  // namespace quista

#include "luns/lun_parser.h"

#include <cstdlib>
#include <cstring>

#include "frame/console.h"
#include "frame/task_memory.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/readers.h"
#include "wmi/safe_arrays.h"
#include "wmi/text_field.h"
#include "wmi/variant_text.h"

namespace quista {

namespace {

constexpr std::size_t kLimitedText = 65;

/// Kept: 65 bytes, not 65 characters, are cleared, and the reader writes no terminator, so a text
/// that fills the field runs on into the next one.
void readLimitedText(IWbemClassObject* lun, const wchar_t* property, wchar_t* field) {
    std::memset(field, 0, kLimitedText);
    static_cast<void>(DsmGetWbemInfoGetStringVal(lun, property, field, kLimitedText));
}

/// A zeroed block with room for one path more than the count: the record declares one itself.
_KORVADSM_DISKINFO* allocateBlock(std::uint8_t numberOfPaths) {
    return allocateTaskMemory<_KORVADSM_DISKINFO>(sizeof(_KORVADSM_DISKINFO) +
                                                  numberOfPaths * sizeof(_KORVADSM_PATHINFO));
}

bool readLunPath(IWbemClassObject* lun, _KORVADSM_DISKINFO& info) {
    UniqueVariant value;
    if (getOrLog(lun, L"LunPath", value, L"ParseLunInfoKORVA::Get(LunPath)") != S_OK) return false;
    const UniqueText text = quotedText(value);
    copyToField(info.LunPath, text.get());
    traceFormatted(L"LunPath: %ls\n", info.LunPath);
    return true;
}

void readVersion(IWbemClassObject* lun, _KORVADSM_DISKINFO& info) {
    UniqueVariant value;
    if (getOrLog(lun, L"KORVAVersion", value, L"ParseLunInfoKORVA::Get(KORVAVersion)") == S_OK) {
        info.KORVAVersion = value.rawLong();
    }
}

void readSize(IWbemClassObject* lun, _KORVADSM_DISKINFO& info) {
    UniqueVariant value;
    if (getOrLog(lun, L"LunSize", value, L"ParseLunInfoKORVA::Get(LunSize)") == S_OK) {
        info.LunSize = static_cast<unsigned long long>(_wtoi64(stringOf(value.get()).c_str()));
    }
}

void readReservationKey(IWbemClassObject* lun, _KORVADSM_DISKINFO& info) {
    UniqueVariant value;
    if (getOrLog(lun, L"ReservationKey", value, L"ParseLunInfoKORVA::Get(ReservationKey)") ==
        S_OK) {
        copyFirstBytes(value.get(), info.ReservationKey, sizeof(info.ReservationKey));
    }
}

}  // namespace

DWORD ParseLunInfoKORVA(IWbemClassObject* lun, _KORVADSM_DISKINFO** out, LONG* room) {
    // Only the low 8 bits of the count size the block.
    const std::uint8_t numberOfPaths = DsmGetPathInfoBval(lun, L"NumberofPaths");
    *room = numberOfPaths + 1;
    *out = allocateBlock(numberOfPaths);
    if (*out == nullptr) return DSM_NO_MEMORY;
    _KORVADSM_DISKINFO& info = **out;

    readLimitedText(lun, L"FilerName", info.FilerName);
    if (!readLunPath(lun, info)) return DSM_WMI_PARSING_ERROR;
    info.LunState = DsmGetPathInfoLval(lun, L"LunState");
    info.CFMode = DsmGetPathInfoBval(lun, L"CFMode");
    readVersion(lun, info);
    readLimitedText(lun, L"KORVAVersionString", info.KORVAVersionString);
    info.LoadBalancePolicy = DsmGetPathInfoBval(lun, L"KorvaDSMLoadBalancePolicy");
    readSize(lun, info);
    readLimitedText(lun, L"SerialNumber", info.SerialNumber);
    readReservationKey(lun, info);
    info.clusterType = DsmGetPathInfoBval(lun, L"clusterType");
    return DSM_SUCCESS;
}

}  // namespace quista

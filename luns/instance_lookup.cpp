#include "luns/instance_lookup.h"

#include <string>

#include "frame/error_log.h"
#include "frame/guard.h"
#include "frame/task_memory.h"
#include "luns/lun_descriptor.h"
#include "luns/lun_query.h"
#include "quista/frame.h"
#include "quista/luns.h"
#include "wmi/instance_names.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/text_field.h"
#include "wmi/variant_text.h"

namespace quista {

namespace {

constexpr std::size_t kScratchCharacters = 1024;

using ScratchText = UniqueTaskMemory<wchar_t>;

/// The scratch block that both lookups begin with; without memory for it they log and give up.
ScratchText allocateScratch(const wchar_t* place) {
    ScratchText scratch(allocateTaskMemory<wchar_t>(kScratchCharacters * sizeof(wchar_t)));
    if (scratch == nullptr) ReportError(place, DSM_NO_MEMORY);
    return scratch;
}

/// Writes an instance's name, escaped and quoted, cut so that its closing quote fits.
bool writeInstanceName(IWbemClassObject* lun, wchar_t* instanceName) {
    UniqueVariant value;
    if (getProperty(lun, L"InstanceName", value) != S_OK) return false;
    std::wstring name = escapeBackslashes(stringOf(value.get()));
    constexpr std::size_t kQuotesAndTerminator = 3;
    if (name.size() > kInstanceNameCharacters - kQuotesAndTerminator) {
        name.resize(kInstanceNameCharacters - kQuotesAndTerminator);
    }
    copyTerminated(instanceName, kInstanceNameCharacters, quoted(name).c_str());
    return true;
}

DWORD notFound() {
    ReportError(L"GetInstance_for_SerialNo", DSM_SERIAL_NOT_FOUND);
    return DSM_SERIAL_NOT_FOUND;
}

}  // namespace

DWORD ParseLunInfoSerialNumber(IWbemClassObject* lun, wchar_t* serial, std::size_t capacity) {
    UniqueVariant value;
    if (getOrLog(lun, L"SerialNumber", value, L"ParseLunInfoSerialNumber::Get(SerialNumber)") !=
        S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    const UniqueText text = bareText(value);
    copyTerminated(serial, capacity, text != nullptr ? text.get() : L"");
    return DSM_SUCCESS;
}

DWORD GetInstance_for_SerialNo(wchar_t* serial, wchar_t* instanceName) {
    const ScratchText scratch = allocateScratch(L"GetInstance_for_SerialNo");
    if (scratch == nullptr) return DSM_NO_MEMORY;

    const std::wstring wanted = serialText(serial);
    ComRef<IEnumWbemClassObject> luns;
    if (logFailure(queryLunsBySerial(wanted, luns), L"GetInstance_for_SerialNo") != S_OK) {
        return DSM_WMI_FAILURE;
    }
    ComRef<IWbemClassObject> lun;
    while (nextOrLog(luns.get(), lun, L"GetInstance_for_SerialNo: IEnumWbemClassObject::Next") ==
           S_OK) {
        if (ParseLunInfoSerialNumber(lun.get(), scratch.get(), kScratchCharacters) != DSM_SUCCESS ||
            wanted != scratch.get()) {
            continue;
        }
        return writeInstanceName(lun.get(), instanceName) ? DSM_SUCCESS : notFound();
    }
    return notFound();
}

}  // namespace quista

unsigned long KORVA_GetInstance_for_Serial(wchar_t* serial, wchar_t* instanceName,
                                           _MPIO_GET_DESCRIPTOR** descriptor,
                                           _DSM_LOAD_BALANCE_TYPE* policy,
                                           _DSM_DISKINFO* diskInfo) {
    using namespace quista;
    return guarded(DSM_SERIAL_NOT_FOUND, [&]() -> DWORD {
        const ScratchText scratch = allocateScratch(L"KORVA_GetInstance_for_Serial");
        if (scratch == nullptr) return DSM_NO_MEMORY;

        ComRef<IEnumWbemClassObject> luns;
        if (queryLunsBySerial(serialText(serial), luns) != S_OK) return DSM_SERIAL_NOT_FOUND;
        // The first instance counts; its serial number is not compared.
        ComRef<IWbemClassObject> lun;
        if (nextOrLog(luns.get(), lun,
                      L"KORVA_GetInstance_for_Serial: IEnumWbemClassObject::Next") != S_OK) {
            return DSM_SERIAL_NOT_FOUND;
        }
        UniqueVariant number;
        static_cast<void>(getProperty(lun.get(), L"KorvaDSMLoadBalancePolicy", number));
        policy->Policy = number.rawLong();
        const bool named = writeInstanceName(lun.get(), instanceName);
        static_cast<void>(ParseMpioDescrKORVA(lun.get(), descriptor, diskInfo));
        return named ? DSM_SUCCESS : DSM_SERIAL_NOT_FOUND;
    });
}

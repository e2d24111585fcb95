// The persistent reservation key: 8 raw bytes, in the registry and in the driver.
#include <windows.h>

#include <wbemcli.h>

#include <cstring>

#include "frame/error_log.h"
#include "frame/guard.h"
#include "frame/session.h"
#include "luns/lun_query.h"
#include "quista/control.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

constexpr LONG kKeyBytes = 8;
constexpr const wchar_t* kParametersKey =
    L"SYSTEM\\CurrentControlSet\\Services\\korvadsm\\Parameters\\";
constexpr const wchar_t* kRegistryValue = L"PersistentReservationKey";
constexpr const wchar_t* kProperty = L"ReservationKey";

/// The driver's service parameters, open for as long as this lives.
class ParametersKey {
  public:
    explicit ParametersKey(REGSAM access)
        : open_(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kParametersKey, 0, access, &key_) ==
                ERROR_SUCCESS) {}
    ParametersKey(const ParametersKey&) = delete;
    ParametersKey& operator=(const ParametersKey&) = delete;
    ~ParametersKey() {
        if (open_) RegCloseKey(key_);
    }

    bool isOpen() const { return open_; }
    HKEY get() const { return key_; }

  private:
    HKEY key_ = nullptr;
    bool open_;
};

DWORD writeRegistryKey(const char* key) {
    const ParametersKey parameters(KEY_QUERY_VALUE | KEY_SET_VALUE);
    // Kept: the code of the default policy stands for a key that cannot be opened.
    if (!parameters.isOpen()) return DSM_SET_DEFAULT_LBP_FAILED;
    const LSTATUS result = RegSetValueExW(parameters.get(), kRegistryValue, 0, REG_BINARY,
                                          reinterpret_cast<const BYTE*>(key), kKeyBytes);
    return result == ERROR_SUCCESS ? DSM_SUCCESS : DSM_REGISTRY_WRITE_FAILED;
}

DWORD readRegistryKey(char* key) {
    const ParametersKey parameters(KEY_QUERY_VALUE);
    if (!parameters.isOpen()) return DSM_GET_PR_KEY_FAILED;
    BYTE bytes[kKeyBytes] = {};
    DWORD size = kKeyBytes;
    if (RegQueryValueExW(parameters.get(), kRegistryValue, nullptr, nullptr, bytes, &size) !=
        ERROR_SUCCESS) {
        return DSM_GET_PR_KEY_FAILED;
    }
    std::memcpy(key, bytes, sizeof(bytes));
    return DSM_SUCCESS;
}

bool putKeyBytes(const VARIANT& value, const char* key) {
    for (LONG i = 0; i < kKeyBytes; ++i) {
        if (logFailure(putByteElement(value, i, static_cast<unsigned char>(key[i])),
                       L"KORVADSMSetPRKey::Put(ReservationKey)") != S_OK) {
            return false;
        }
    }
    return true;
}

/// Only the first KORVADSM instance is written.
DWORD writeDriverKey(const char* key) {
    ComRef<IEnumWbemClassObject> instances;
    if (enumerateClass(L"KORVADSM", instances) != S_OK) return DSM_ERROR;
    ComRef<IWbemClassObject> dsm;
    // Kept: the place is logged as it stands, unformatted.
    if (nextOrLog(instances.get(), dsm,
                  L"KORVADSMSetPRKey: IEnumWbemClassObject::Next returned 0x%x") != S_OK) {
        return DSM_ERROR;
    }
    UniqueVariant value;
    CIMTYPE type = 0;
    if (getOrLog(dsm.get(), kProperty, value, L"KORVADSMSetPRKey::Get(ReservationKey)", &type) !=
            S_OK ||
        !putKeyBytes(value.get(), key) ||
        logFailure(dsm->Put(kProperty, 0, &value.get(), type),
                   L"KORVADSMSetPRKey::Put(ReservationKey)") != S_OK ||
        logFailure(gServices->PutInstance(dsm.get(), 0, nullptr, nullptr),
                   L"KORVADSMSetPRKey::PutInstance(ReservationKey)") != S_OK) {
        return DSM_ERROR;
    }
    return DSM_SUCCESS;
}

DWORD readLunKey(unsigned char* key, const wchar_t* serialNumber) {
    ComRef<IEnumWbemClassObject> luns;
    if (queryLunsBySerial(serialText(serialNumber), luns) != S_OK) return DSM_ERROR;
    ComRef<IWbemClassObject> lun;
    if (nextOrLog(luns.get(), lun, L"KORVADSMGetPRKey: IEnumWbemClassObject::Next") != S_OK) {
        return DSM_ERROR;
    }
    UniqueVariant value;
    if (getOrLog(lun.get(), kProperty, value, L"KORVADSMGetPRKey::Get(ReservationKey)") != S_OK) {
        return DSM_ERROR;
    }
    for (LONG i = 0; i < kKeyBytes; ++i) {
        // Kept: the place names the function that sets the key. Bytes read so far stay.
        if (logFailure(getByteElement(value.get(), i, key[i]),
                       L"KORVADSMSetPRKey::Get(ReservationKey)") != S_OK) {
            return DSM_ERROR;
        }
    }
    return DSM_SUCCESS;
}

}  // namespace

}  // namespace quista

unsigned long Reg_Set_PR(char* key) {
    using namespace quista;
    return guarded(DSM_REGISTRY_WRITE_FAILED, [&] { return writeRegistryKey(key); });
}

unsigned long Reg_Get_PR(char* key) {
    using namespace quista;
    return guarded(DSM_GET_PR_KEY_FAILED, [&] { return readRegistryKey(key); });
}

unsigned long KORVADSMSetPRKey(char* key) {
    using namespace quista;
    return guarded(DSM_ERROR, [&] { return writeDriverKey(key); });
}

unsigned long KORVADSMGetPRKey(unsigned char* key, wchar_t* serialNumber) {
    using namespace quista;
    return guarded(DSM_ERROR, [&] { return readLunKey(key, serialNumber); });
}

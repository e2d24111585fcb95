#include "mpio/controller_parser.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

#include "frame/console.h"
#include "frame/error_log.h"
#include "mpio/object_or_array.h"
#include "quista/status.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

constexpr std::size_t kMaximumControllers = 64;

DWORD parseArray(const VARIANT& controllers, _MPIO_CONTROLLER_CONFIGURATION& config,
                 DWORD& entryCount) {
    ObjectTable objects(kMaximumControllers);
    DWORD status = DSM_WMI_PARSING_ERROR;
    DWORD parsed = 0;
    for (LONG i = 0, count = objects.fill(controllers); i < count; ++i) {
        status = ParseControllerInfo(objects.at(i), &config.ControllerInfo[i]);
        objects.release(i);
        if (status != DSM_SUCCESS) {
            // Kept: the elements after it are not released.
            objects.keepObjectsOnPurpose();
            break;
        }
        ++parsed;
    }
    entryCount = parsed;
    return status;
}

DWORD parseSingle(IWbemClassObject* controller, _MPIO_CONTROLLER_CONFIGURATION& config,
                  DWORD& entryCount) {
    traceLine(L"WARNING: ControllerInfo is not an array!\n");
    // Kept: whether it could be parsed does not matter.
    static_cast<void>(ParseControllerInfo(controller, &config.ControllerInfo[0]));
    entryCount = 1;
    return DSM_SUCCESS;
}

DWORD parseControllers(const ObjectOrArray& controllers, _MPIO_CONTROLLER_CONFIGURATION& config,
                       DWORD& entryCount) {
    switch (controllers.value.type()) {
        case VT_UNKNOWN:
            return parseSingle(controllers.single.get(), config, entryCount);
        case VT_ARRAY | VT_UNKNOWN:
            return parseArray(controllers.value.get(), config, entryCount);
        case VT_NULL:
            traceFormatted(L"No MPIO_CONTROLLER_INFO instances, NumberControllers=%d\n",
                           config.NumberControllers);
            entryCount = 0;
            return DSM_SUCCESS;
        default:
            return DSM_WMI_PARSING_ERROR;
    }
}

}  // namespace

DWORD ParseMPIOControllerConfig(_MPIO_CONTROLLER_CONFIGURATION* config, DWORD* entryCount) {
    ComRef<IEnumWbemClassObject> instances;
    if (logFailure(enumerateClass(L"MPIO_CONTROLLER_CONFIGURATION", instances),
                   L"ParseMPIOControllerConfig::CreateInstanceEnum") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    ComRef<IWbemClassObject> instance;
    while (nextOrLog(instances.get(), instance,
                     L"ParseMPIOControllerConfig::MPIO_CONTROLLER_CONFIGURATION::Next") == S_OK) {
        UniqueVariant count;
        if (getOrLog(instance.get(), L"NumberControllers", count,
                     L"ParseMPIOControllerConfig::Get(NumberControllers)") != S_OK) {
            continue;
        }
        config->NumberControllers = count.rawLong();
        ObjectOrArray controllers;
        if (logFailure(controllers.read(instance.get(), L"ControllerInfo"),
                       L"ParseMPIOControllerConfig::Get(ControllerInfo)") != S_OK) {
            continue;
        }
        // Only the first instance that gives both properties counts.
        return parseControllers(controllers, *config, *entryCount);
    }
    return DSM_WMI_PARSING_ERROR;
}

DWORD ParseControllerInfo(IWbemClassObject* controller, _MPIO_CONTROLLER_INFO* entry) {
    UniqueVariant value;
    if (getOrLog(controller, L"AssociatedDsm", value, L"ParseControllerInfo::Get(AssociatedDsm)") !=
        S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    // The block is zeroed; a name that fills the field goes without a terminator.
    const std::wstring name = stringOf(value.get());
    std::wmemcpy(entry->AssociatedDsm, name.c_str(),
                 std::min(name.size(), std::size(entry->AssociatedDsm)));

    if (getOrLog(controller, L"ControllerState", value,
                 L"ParseControllerInfo::Get(ControllerState)") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    entry->ControllerState = value.rawLong();
    if (getOrLog(controller, L"IdentifierType", value,
                 L"ParseControllerInfo::Get(IdentifierType)") != S_OK) {
        return DSM_WMI_PARSING_ERROR;
    }
    entry->IdentifierType = value.rawLong();
    return DSM_SUCCESS;
}

std::wstring associatedDsmOf(const _MPIO_CONTROLLER_INFO& controller) {
    const wchar_t* name = controller.AssociatedDsm;
    return std::wstring(name, wcsnlen(name, std::size(controller.AssociatedDsm)));
}

}  // namespace quista

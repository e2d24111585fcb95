#include "control/path_search.h"

#include <utility>

#include "frame/error_log.h"
#include "luns/path_identifier.h"
#include "quista/status.h"
#include "wmi/instance_names.h"
#include "wmi/property.h"
#include "wmi/query.h"
#include "wmi/safe_arrays.h"

namespace quista {

namespace {

/// What one LUN says of its paths.
struct LunPaths {
    UniqueVariant count;
    UniqueVariant paths;
    UniqueVariant policy;

    bool read(IWbemClassObject* lun) {
        // Kept: the policy reports under the place of the paths.
        return getOrLog(lun, L"NumberOfPaths", count, L"CallMethodforITL: NumberOfPaths") == S_OK &&
               getOrLog(lun, L"Paths", paths, L"CallMethodforITL: Paths") == S_OK &&
               getOrLog(lun, L"KORVADSMLoadBalancePolicy", policy, L"CallMethodforITL: Paths") ==
                   S_OK;
    }

    bool hold(std::uint64_t pathId) const {
        ObjectTable objects(roomFor(paths.get(), count.rawLong()));
        objects.fill(paths.get());
        for (LONG i = 0; i < objects.count(); ++i) {
            // Not checked: an identifier that cannot be read is 0.
            UniqueVariant value;
            static_cast<void>(getProperty(objects.at(i), L"DsmId", value));
            if (pathIdentifierOf(value.rawLong()) == pathId) return true;
        }
        return false;
    }
};

void readObjectPath(IWbemClassObject* lun, const std::wstring& className, PathOwner& owner) {
    UniqueVariant name;
    if (getOrLog(lun, L"InstanceName", name, L"CallMethodforITL::Get") != S_OK) {
        // The call that follows then fails for want of a path.
        owner.status = DSM_WMI_FAILURE;
        return;
    }
    const std::wstring escaped = escapeBackslashes(stringOf(name.get()));
    owner.objectPath = UniqueBstr(instancePath(className, escaped).c_str());
}

}  // namespace

PathOwner findPathOwner(const std::wstring& className, std::uint64_t pathId) {
    PathOwner owner;
    owner.status = DSM_ERROR;
    ComRef<IEnumWbemClassObject> luns;
    if (logFailure(enumerateClass(className.c_str(), luns),
                   L"CallMethodforITL::CreateInstanceEnum") != S_OK) {
        owner.status = DSM_PATH_NOT_FOUND;
        return owner;
    }
    ComRef<IWbemClassObject> lun;
    while (nextOrLog(luns.get(), lun, L"CallMethodforITL: IEnumWbemClassObject::Next") == S_OK) {
        LunPaths paths;
        if (!paths.read(lun.get())) {
            owner.status = DSM_WMI_FAILURE;
            return owner;
        }
        if (!paths.hold(pathId)) continue;
        owner.found = true;
        owner.policy = paths.policy.rawLong();
        readObjectPath(lun.get(), className, owner);
        return owner;
    }
    owner.status = DSM_PATH_NOT_FOUND;
    return owner;
}

}  // namespace quista

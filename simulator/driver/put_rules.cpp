#include "simulator/driver/put_rules.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "simulator/com/wbem_result.h"
#include "simulator/driver/class_names.h"
#include "simulator/driver/instance_values.h"

namespace quista::simulator {
namespace {

constexpr wchar_t kReservationKey[] = L"ReservationKey";

std::optional<std::int64_t> limitOf(const CimProperty& property, std::wstring_view qualifier) {
    const CimQualifier* limit = property.qualifiers.find(qualifier);
    const std::int64_t* number = limit != nullptr ? limit->value.asSigned() : nullptr;
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

bool isWithinLimits(const CimProperty& property, const CimValue& value) {
    const std::optional<std::uint64_t> bits = numberIn(value);
    if (!bits) return true;
    // Of an unsigned number the limits cannot say more than that it is beyond them.
    const bool isHuge = value.asUnsigned() != nullptr && *bits > INT64_MAX;
    const auto number = isHuge ? INT64_MAX : static_cast<std::int64_t>(*bits);
    const std::optional<std::int64_t> maximum = limitOf(property, L"MaxValue");
    const std::optional<std::int64_t> minimum = limitOf(property, L"MinValue");
    return (!maximum || number <= *maximum) && (!minimum || number >= *minimum);
}

bool areValuesAllowed(const CimInstance& instance) {
    return std::ranges::all_of(instance.definition().properties, [&](const CimProperty& property) {
        return isWithinLimits(property, *instance.find(property.name));
    });
}

CimInstancePtr stored(const Repository& repository, const std::wstring& nameSpace,
                      const CimInstance& instance) {
    const std::optional<ObjectPath> path = parseObjectPath(relativePath(instance));
    return path ? repository.findInstance(nameSpace, *path) : nullptr;
}

bool isReservationKeyNew(const CimInstancePtr& before, const CimInstance& after) {
    const CimValue* key = after.find(kReservationKey);
    if (key == nullptr || key->isNull()) return false;
    const CimValue* old = before != nullptr ? before->find(kReservationKey) : nullptr;
    return old == nullptr || !(*old == *key);
}

void showKeyInLuns(Repository& repository, const std::wstring& nameSpace, const CimValue& key) {
    for (const CimInstancePtr& each : repository.instances(nameSpace, kLunClass)) {
        CimInstance lun = *each;
        if (lun.set(kReservationKey, key) != CimInstance::SetResult::done) continue;
        repository.putInstance(nameSpace, lun);
    }
}

}  // namespace

HRESULT putByRules(Repository& repository, const std::wstring& nameSpace,
                   const CimInstance& instance, PutMode mode) {
    if (!areValuesAllowed(instance)) return wbem(WBEM_E_INVALID_PARAMETER);
    const bool isDsm = instance.definition().isA(kDsmClass);
    const CimInstancePtr before = isDsm ? stored(repository, nameSpace, instance) : nullptr;
    const RepositoryStatus status = repository.putInstance(nameSpace, instance, mode);
    if (status == RepositoryStatus::ok && isDsm && isReservationKeyNew(before, instance)) {
        showKeyInLuns(repository, nameSpace, *instance.find(kReservationKey));
    }
    return wbem(status);
}

}  // namespace quista::simulator

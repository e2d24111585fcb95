#include "simulator/com/enumerator.h"

#include <algorithm>
#include <utility>

#include "simulator/com/class_object.h"

namespace quista::simulator {

Enumerator::Enumerator(std::shared_ptr<Host> host, std::shared_ptr<const ResultSet> results,
                       std::size_t position)
    : ComObject(std::move(host)), results_(std::move(results)), position_(position) {}

HRESULT STDMETHODCALLTYPE Enumerator::Reset() {
    return host()->run(call(L"Reset"), [&] {
        if (results_->isForwardOnly) return wbem(WBEM_E_INVALID_OPERATION);
        position_ = 0;
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE Enumerator::Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                           ULONG* returned) {
    host()->nextLimit.count();
    if (returned != nullptr) *returned = 0;
    return host()->run(
        call(L"Next"),
        [&] {
            if (objects == nullptr || returned == nullptr ||
                timeout < static_cast<LONG>(WBEM_INFINITE)) {
                return wbem(WBEM_E_INVALID_PARAMETER);
            }
            return next(count, objects, returned);
        },
        [&] {
            if (objects != nullptr) std::fill_n(objects, count, nullptr);
        });
}

/// Writes no element beyond those it delivers, as WMI does: clients find their own values there.
HRESULT Enumerator::next(ULONG count, IWbemClassObject** objects, ULONG* returned) {
    if (FAILED(results_->deferredError)) return results_->deferredError;
    std::vector<ComOwner<ClassObject>> made(std::min<std::size_t>(count, left()));
    for (std::size_t i = 0; i < made.size(); ++i) {
        made[i] = makeClassObject(host(), results_->objects[position_ + i]);
    }
    position_ += made.size();
    for (ComOwner<ClassObject>& object : made) *objects++ = object.release();
    *returned = static_cast<ULONG>(made.size());
    return *returned == count ? S_OK : wbem(WBEM_S_FALSE);
}

HRESULT STDMETHODCALLTYPE Enumerator::NextAsync(ULONG, IWbemObjectSink*) {
    return notImplemented(L"NextAsync");
}

HRESULT STDMETHODCALLTYPE Enumerator::Clone(IEnumWbemClassObject** copy) {
    clearOutput(copy);
    return host()->run(call(L"Clone"), [&] {
        if (copy == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        if (results_->isForwardOnly) return wbem(WBEM_E_INVALID_OPERATION);
        *copy = new Enumerator(host(), results_, position_);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE Enumerator::Skip(LONG, ULONG count) {
    return host()->run(call(L"Skip"), [&] {
        if (FAILED(results_->deferredError)) return results_->deferredError;
        const std::size_t skipped = std::min<std::size_t>(count, left());
        position_ += skipped;
        return skipped == count ? S_OK : wbem(WBEM_S_FALSE);
    });
}

}  // namespace quista::simulator

// IEnumWbemClassObject: the results of an enumeration or query.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "simulator/com/com_object.h"
#include "simulator/com/object_state.h"

namespace quista::simulator {

/// What an enumeration found. Shared by an enumerator and its clones, which walk it on their own.
struct ResultSet {
    std::wstring className{};
    std::vector<ObjectState> objects{};
    /// An error of the operation that surfaces when the client asks for the first object.
    HRESULT deferredError = S_OK;
    bool isForwardOnly = false;
};

class Enumerator final : public ComObject<IEnumWbemClassObject, ObjectKind::kEnumerator> {
  public:
    Enumerator(std::shared_ptr<Host> host, std::shared_ptr<const ResultSet> results,
               std::size_t position = 0);

    HRESULT STDMETHODCALLTYPE Reset() override;
    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                   ULONG* returned) override;
    HRESULT STDMETHODCALLTYPE NextAsync(ULONG count, IWbemObjectSink* sink) override;
    HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject** copy) override;
    HRESULT STDMETHODCALLTYPE Skip(LONG timeout, ULONG count) override;

  private:
    ~Enumerator() override = default;

    std::wstring_view callClass() const override { return results_->className; }
    std::size_t left() const { return results_->objects.size() - position_; }
    HRESULT next(ULONG count, IWbemClassObject** objects, ULONG* returned);

    std::shared_ptr<const ResultSet> results_;
    std::size_t position_;
};

}  // namespace quista::simulator

// The common ground of the simulator's COM objects: identity, references, place in the ledger.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <memory>
#include <utility>

#include "simulator/com/host.h"
#include "simulator/com/pointers.h"
#include "simulator/com/reference_counted.h"

namespace quista::simulator {

template <class Interface>
inline constexpr const wchar_t* kInterfaceName = nullptr;
template <>
inline constexpr const wchar_t* kInterfaceName<IWbemLocator> = L"IWbemLocator";
template <>
inline constexpr const wchar_t* kInterfaceName<IWbemServices> = L"IWbemServices";
template <>
inline constexpr const wchar_t* kInterfaceName<IEnumWbemClassObject> = L"IEnumWbemClassObject";
template <>
inline constexpr const wchar_t* kInterfaceName<IWbemClassObject> = L"IWbemClassObject";
template <>
inline constexpr const wchar_t* kInterfaceName<IMofCompiler> = L"IMofCompiler";

/// An object that clients hold: it shares the host and is counted in its ledger.
template <class Interface, ObjectKind kKind>
class ComObject : public ReferenceCounted<Interface> {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        return host_->run(call(L"QueryInterface"), [&] { return this->answer(iid, object); });
    }

  protected:
    explicit ComObject(std::shared_ptr<Host> host) : host_(std::move(host)) {
        host_->ledger.born(kKind);
    }
    ~ComObject() override { host_->ledger.died(kKind); }

    const std::shared_ptr<Host>& host() const { return host_; }

    /// The class that faults and the trace know the object by.
    virtual std::wstring_view callClass() const { return {}; }

    Call call(const wchar_t* method) const {
        return {
            .interfaceName = kInterfaceName<Interface>, .method = method, .className = callClass()};
    }

    /// For the methods that the simulated host does not offer.
    HRESULT notImplemented(const wchar_t* method) {
        return host_->run(call(method), [] { return E_NOTIMPL; });
    }

  private:
    std::shared_ptr<Host> host_;
};

}  // namespace quista::simulator

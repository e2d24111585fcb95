#include "simulator/com/class_factory.h"

#include "simulator/com/locator.h"
#include "simulator/com/mof_compiler.h"
#include "simulator/com/reference_counted.h"

namespace quista::simulator {
namespace {

/// The class object of one class. COM holds it while it is registered; it counts for no client.
template <class Object>
class ClassFactory final : public ReferenceCounted<IClassFactory> {
  public:
    /// `failure` is where the host keeps the result of a creation that is to fail.
    ClassFactory(std::shared_ptr<Host> host, const wchar_t* className, HRESULT Host::*failure)
        : host_(std::move(host)), className_(className), failure_(failure) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        return answer(iid, object);
    }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        const Call call{.interfaceName = L"IClassFactory",
                        .method = L"CreateInstance",
                        .className = className_};
        return host_->run(call, [&]() -> HRESULT {
            if (outer != nullptr) return CLASS_E_NOAGGREGATION;
            if (FAILED((*host_).*failure_)) return (*host_).*failure_;
            return ComOwner<Object>(new Object(host_))->answer(iid, object);
        });
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    ~ClassFactory() override = default;

    std::shared_ptr<Host> host_;
    const wchar_t* className_;
    HRESULT Host::*failure_;
};

template <class Object>
HRESULT registerClass(REFCLSID id, const std::shared_ptr<Host>& host, const wchar_t* className,
                      HRESULT Host::*failure, DWORD& cookie) {
    const ComOwner<IClassFactory> factory(new ClassFactory<Object>(host, className, failure));
    return CoRegisterClassObject(id, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                 &cookie);
}

void revokeClass(DWORD& cookie) {
    if (cookie != 0) CoRevokeClassObject(cookie);
    cookie = 0;
}

}  // namespace

HRESULT Registration::registerHost(const std::shared_ptr<Host>& host) {
    if (locator_ != 0) return S_FALSE;
    HRESULT result = registerClass<Locator>(CLSID_WbemLocator, host, L"WbemLocator",
                                            &Host::locatorFailure, locator_);
    if (SUCCEEDED(result)) {
        result = registerClass<MofCompiler>(CLSID_MofCompiler, host, L"MofCompiler",
                                            &Host::compilerFailure, compiler_);
    }
    if (FAILED(result)) revoke();
    return result;
}

void Registration::revoke() {
    revokeClass(locator_);
    revokeClass(compiler_);
}

}  // namespace quista::simulator

// Reference counting for objects of one interface.
#pragma once

#include <windows.h>

#include <atomic>
#include <unknwn.h>

namespace quista::simulator {

// COM's interfaces have no virtual destructor, and need none: only Release deletes, from within.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Born with one reference, destroyed with the last.
template <class Interface>
class ReferenceCounted : public Interface {
  public:
    ReferenceCounted() = default;
    ReferenceCounted(const ReferenceCounted&) = delete;
    ReferenceCounted& operator=(const ReferenceCounted&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() final { return ++references_; }

    ULONG STDMETHODCALLTYPE Release() final {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    /// QueryInterface without being a call of a client. `object` is valid and null.
    HRESULT answer(REFIID iid, void** object) {
        if (iid != __uuidof(IUnknown) && iid != __uuidof(Interface)) return E_NOINTERFACE;
        AddRef();
        *object = static_cast<Interface*>(this);
        return S_OK;
    }

  protected:
    virtual ~ReferenceCounted() = default;

  private:
    std::atomic<ULONG> references_{1};
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

}  // namespace quista::simulator

// An object that a test puts in the place of one of WMI's.
#pragma once

#include <windows.h>

#include <unknwn.h>

namespace quista::test {

// COM interfaces have no virtual destructor; this object is destroyed as what it is.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// For its life the thread's CoCreateInstance gives `object` for a class. COM must be initialised,
/// and nothing else registered in this place.
class RegisteredObject final : public IClassFactory {
  public:
    RegisteredObject(const CLSID& classId, IUnknown& object);
    ~RegisteredObject();
    RegisteredObject(const RegisteredObject&) = delete;
    RegisteredObject& operator=(const RegisteredObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    IUnknown& object_;
    DWORD registration_ = 0;
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

}  // namespace quista::test

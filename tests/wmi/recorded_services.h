// Stands between the library and a WMI connection and records what the library passes in.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>
#include <vector>

namespace quista::test {

/// The arguments of one call that a connection's user chooses.
struct ServiceCall {
    std::wstring method;
    std::wstring target;  ///< class, query or object path
    std::wstring detail;  ///< query language or WMI method
    LONG flags = 0;
    std::wstring input;         ///< MOF text of the in-parameters or of the instance; empty without
    std::wstring output;        ///< MOF text of the out-parameters that came back
    bool wantsNothing = false;  ///< a GetObject without a place for the object

    bool operator==(const ServiceCall&) const = default;
};

void PrintTo(const ServiceCall& call, std::ostream* out);

// COM interfaces have no virtual destructor; this object is destroyed as what it is.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Takes the place of the library's root\wmi connection for its life and passes the calls on. A
/// context, or an asked-for call result, is a failure of the test.
class RecordedServices final : public IWbemServices {
  public:
    RecordedServices();
    ~RecordedServices();
    RecordedServices(const RecordedServices&) = delete;
    RecordedServices& operator=(const RecordedServices&) = delete;

    const std::vector<ServiceCall>& calls() const { return calls_; }

    HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                        IWbemClassObject** object,
                                        IWbemCallResult** result) override;
    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags,
                                                 IWbemContext* context,
                                                 IEnumWbemClassObject** enumerator) override;
    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                        IWbemContext* context,
                                        IEnumWbemClassObject** enumerator) override;
    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                         IWbemContext* context, IWbemClassObject* input,
                                         IWbemClassObject** output,
                                         IWbemCallResult** result) override;

    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* instance, LONG flags,
                                          IWbemContext* context, IWbemCallResult** result) override;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR, LONG, IWbemContext*, IWbemServices**,
                                            IWbemCallResult**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                       IWbemCallResult**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                            IWbemObjectSink*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*,
                                          IWbemCallResult**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR, LONG, IWbemContext*,
                                              IEnumWbemClassObject**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                   IWbemObjectSink*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR, LONG, IWbemContext*,
                                             IWbemCallResult**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*,
                                                  IWbemObjectSink*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                      IWbemObjectSink*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG,
                                                         IWbemContext*, IWbemObjectSink*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                              IWbemClassObject*, IWbemObjectSink*) override {
        return E_NOTIMPL;
    }

  private:
    IWbemServices* const connection_;
    std::vector<ServiceCall> calls_;
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

}  // namespace quista::test

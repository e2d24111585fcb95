// The operations of IWbemServices that the simulated host does not offer: those that answer into a
// sink, and the events.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include "simulator/com/com_object.h"

namespace quista::simulator {

class ServicesBase : public ComObject<IWbemServices, ObjectKind::kServices> {
  public:
    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override {
        return notImplemented(L"CancelAsyncCall");
    }
    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink** sink) override {
        clearOutput(sink);
        return notImplemented(L"QueryObjectSink");
    }
    HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return notImplemented(L"GetObjectAsync");
    }
    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                       IWbemCallResult** result) override {
        clearOutput(result);
        return notImplemented(L"PutClass");
    }
    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                            IWbemObjectSink*) override {
        return notImplemented(L"PutClassAsync");
    }
    HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return notImplemented(L"DeleteClassAsync");
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                   IWbemObjectSink*) override {
        return notImplemented(L"CreateClassEnumAsync");
    }
    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return notImplemented(L"PutInstanceAsync");
    }
    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*,
                                                  IWbemObjectSink*) override {
        return notImplemented(L"DeleteInstanceAsync");
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                      IWbemObjectSink*) override {
        return notImplemented(L"CreateInstanceEnumAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return notImplemented(L"ExecQueryAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject** events) override {
        clearOutput(events);
        return notImplemented(L"ExecNotificationQuery");
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG,
                                                         IWbemContext*, IWbemObjectSink*) override {
        return notImplemented(L"ExecNotificationQueryAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                              IWbemClassObject*, IWbemObjectSink*) override {
        return notImplemented(L"ExecMethodAsync");
    }

  protected:
    using ComObject::ComObject;
};

}  // namespace quista::simulator

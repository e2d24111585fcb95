// IWbemServices: one namespace of a simulated host.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <memory>
#include <string>
#include <string_view>

#include "simulator/com/enumerator.h"
#include "simulator/com/services_base.h"
#include "simulator/repository/object_path.h"

namespace quista::simulator {

class Services final : public ServicesBase {
  public:
    /// `nameSpace` is normalized and exists.
    Services(std::shared_ptr<Host> host, std::wstring nameSpace);

    HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR name, LONG flags, IWbemContext* context,
                                            IWbemServices** services,
                                            IWbemCallResult** result) override;
    HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                        IWbemClassObject** object,
                                        IWbemCallResult** result) override;
    HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR className, LONG flags, IWbemContext* context,
                                          IWbemCallResult** result) override;
    HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR superclass, LONG flags,
                                              IWbemContext* context,
                                              IEnumWbemClassObject** classes) override;
    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* instance, LONG flags,
                                          IWbemContext* context, IWbemCallResult** result) override;
    HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR path, LONG flags, IWbemContext* context,
                                             IWbemCallResult** result) override;
    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags,
                                                 IWbemContext* context,
                                                 IEnumWbemClassObject** instances) override;
    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                        IWbemContext* context,
                                        IEnumWbemClassObject** instances) override;
    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                         IWbemContext* context, IWbemClassObject* in,
                                         IWbemClassObject** out, IWbemCallResult** result) override;

  private:
    ~Services() override = default;

    Repository& repository() const { return host()->repository; }
    Call pathCall(const wchar_t* method, const wchar_t* text,
                  const std::optional<ObjectPath>& path) const;
    /// The namespace a path means: its own, or that of the connection.
    const std::wstring& nameSpaceOf(const ObjectPath& path) const;

    HRESULT getObject(const ObjectPath& path, IWbemClassObject** object);
    HRESULT createClassEnum(std::wstring_view superclass, LONG flags,
                            IEnumWbemClassObject** classes);
    HRESULT createInstanceEnum(std::wstring_view className, LONG flags,
                               IEnumWbemClassObject** instances);
    HRESULT putInstance(const ObjectState& state, LONG flags);
    /// Answers with the results, or with an enumerator whose first Next fails, as WMI answers
    /// semisynchronous calls for an unknown class.
    HRESULT answerUnknownClass(std::wstring_view className, LONG flags,
                               IEnumWbemClassObject** results);
    void answer(ResultSet results, LONG flags, IEnumWbemClassObject** enumerator);

    std::wstring nameSpace_;
};

/// Makes the services object of a namespace in any spelling.
HRESULT connect(const std::shared_ptr<Host>& host, std::wstring_view nameSpace,
                IWbemServices** services);

}  // namespace quista::simulator

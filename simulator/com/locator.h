// IWbemLocator: the way into the namespaces of a simulated host.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <memory>

#include "simulator/com/com_object.h"

namespace quista::simulator {

class Locator final : public ComObject<IWbemLocator, ObjectKind::kLocator> {
  public:
    explicit Locator(std::shared_ptr<Host> host);

    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR nameSpace, const BSTR user,
                                            const BSTR password, const BSTR locale, LONG flags,
                                            const BSTR authority, IWbemContext* context,
                                            IWbemServices** services) override;

  private:
    ~Locator() override = default;
};

}  // namespace quista::simulator

#include "simulator/com/locator.h"

#include <utility>

#include "simulator/com/services.h"
#include "simulator/repository/object_path.h"

namespace quista::simulator {

Locator::Locator(std::shared_ptr<Host> host) : ComObject(std::move(host)) {}

HRESULT STDMETHODCALLTYPE Locator::ConnectServer(const BSTR nameSpace, const BSTR, const BSTR,
                                                 const BSTR, LONG flags, const BSTR, IWbemContext*,
                                                 IWbemServices** services) {
    clearOutput(services);
    Call made = call(L"ConnectServer");
    made.className = textOf(nameSpace);
    return host()->run(made, [&] {
        if (nameSpace == nullptr || services == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        if ((flags & ~WBEM_FLAG_CONNECT_USE_MAX_WAIT) != 0) return wbem(WBEM_E_INVALID_PARAMETER);
        return connect(host(), nameSpace, services);
    });
}

}  // namespace quista::simulator

#include "tests/frame/recording_locator.h"

#include "tests/support/text.h"

namespace quista::test {

void PrintTo(const Connection& connection, std::ostream* out) {
    *out << narrow(connection.nameSpace) << ", " << connection.flags
         << (connection.hasOthers ? " and more" : "");
}

HRESULT RecordingLocator::QueryInterface(REFIID iid, void** object) {
    const bool isKnown = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IWbemLocator);
    *object = isKnown ? this : nullptr;
    return isKnown ? S_OK : E_NOINTERFACE;
}

HRESULT RecordingLocator::ConnectServer(const BSTR nameSpace, const BSTR user, const BSTR password,
                                        const BSTR locale, LONG flags, const BSTR authority,
                                        IWbemContext* context, IWbemServices** services) {
    const bool hasOthers = user != nullptr || password != nullptr || locale != nullptr ||
                           authority != nullptr || context != nullptr;
    connections_.push_back({nameSpace, flags, hasOthers});
    *services = nullptr;
    return E_ACCESSDENIED;
}

}  // namespace quista::test

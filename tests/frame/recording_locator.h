// Plays WMI's locator, records what it is given and refuses every connection.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>
#include <vector>

#include "tests/frame/registered_object.h"

namespace quista::test {

/// The arguments of one ConnectServer.
struct Connection {
    std::wstring nameSpace;
    LONG flags = 0;
    bool hasOthers = false;  ///< user, password, locale, authority or context

    bool operator==(const Connection&) const = default;
};

void PrintTo(const Connection& connection, std::ostream* out);

// COM interfaces have no virtual destructor; this object is destroyed as what it is.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// For the object's life the thread's WMI locator: COM must be
/// initialised, and nothing else registered in this place.
class RecordingLocator final : public IWbemLocator {
  public:
    RecordingLocator() = default;
    ~RecordingLocator() = default;
    RecordingLocator(const RecordingLocator&) = delete;
    RecordingLocator& operator=(const RecordingLocator&) = delete;

    const std::vector<Connection>& connections() const { return connections_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR nameSpace, const BSTR user,
                                            const BSTR password, const BSTR locale, LONG flags,
                                            const BSTR authority, IWbemContext* context,
                                            IWbemServices** services) override;

  private:
    RegisteredObject registration_{CLSID_WbemLocator, *this};
    std::vector<Connection> connections_;
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

}  // namespace quista::test

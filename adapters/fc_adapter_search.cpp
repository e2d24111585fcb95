#include "adapters/fc_adapter_search.h"

#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <string>

#include "adapters/hba_api_wrapper.h"
#include "adapters/retry.h"
#include "adapters/target_mapping.h"
#include "frame/console.h"
#include "quista/frame.h"
#include "quista/status.h"

namespace quista {

namespace {

// The API takes no length for a name; 256 bytes are the convention. More are here, in case.
constexpr std::size_t kNameBytes = 1024;

void debugText(const std::wstring& text) {
    OutputDebugStringW(text.c_str());
}

// The API's texts have 8 bits, in the system's code page.
void debugAnsi(const char* text) {
    debugText(fromAnsi(text));
}

void logApiFailure(const wchar_t* what) {
    ReportError(what, DSM_HBA_API_LIBRARY_LOAD_FAILED);
}

/// One search over all adapters.
class FcAdapterSearch {
  public:
    FcAdapterSearch(const PathAddress& path, AdapterText& hbaAddress, AdapterText& hbaName)
        : path_(path),
          portText_(std::to_string(path.port)),
          hbaAddress_(hbaAddress),
          hbaName_(hbaName) {}

    hba::Status run();

  private:
    bool allocateRecords();
    bool examineAdapter(std::uint32_t index);
    void examinePorts(hba::Handle adapter);
    bool readPort(hba::Handle adapter, std::uint32_t port);
    void examineMapping(hba::Handle adapter);
    void takeMatch();

    const PathAddress path_;
    const std::string portText_;
    AdapterText& hbaAddress_;
    AdapterText& hbaName_;
    HBAAPIWrapper api_;
    std::unique_ptr<hba::AdapterAttributes> adapterAttributes_;
    std::unique_ptr<hba::PortAttributes> portAttributes_;
    hba::Status status_ = hba::kOk;
    bool matched_ = false;
};

hba::Status FcAdapterSearch::run() {
    debugText(L"Inside GetFCPAdapterInfo");
    debugText(
        formatText(L"Portnum %d busnum %d targetnum %d\n", path_.port, path_.bus, path_.target));
    const std::uint32_t adapters = api_.numberOfAdapters();
    if (adapters == 0) return hba::kError;
    debugText(formatText(L"numberOfAdapters %d\n", adapters));
    if (!allocateRecords()) return hba::kError;
    for (std::uint32_t index = 0; index < adapters && !matched_; ++index) {
        if (!examineAdapter(index)) break;
    }
    return status_;
}

bool FcAdapterSearch::allocateRecords() {
    adapterAttributes_.reset(new (std::nothrow) hba::AdapterAttributes{});
    if (adapterAttributes_ == nullptr) {
        logApiFailure(L"QUISTA:GetFCAdapterInfo - could not get adapterAttributes from HBA API");
        return false;
    }
    portAttributes_.reset(new (std::nothrow) hba::PortAttributes{});
    if (portAttributes_ == nullptr) {
        logApiFailure(L"QUISTA:GetFCAdapterInfo - could not get port attributes from HBA API");
        return false;
    }
    return true;
}

/// @return false when the search ends with the status reached
bool FcAdapterSearch::examineAdapter(std::uint32_t index) {
    char name[kNameBytes] = {};
    const hba::Status named = api_.adapterName(index, name);
    name[kNameBytes - 1] = '\0';
    if (named != hba::kOk) {
        logApiFailure(L"QUISTA:GetFCAdapterInfo - could not get adapter name from HBA API");
        status_ = named;
        return false;
    }
    debugText(formatText(L"Adapter Index %d\n", index));
    debugText(L"Adapter name ");
    debugAnsi(name);

    const hba::Handle adapter = api_.openAdapter(name);
    if (adapter == 0) {
        logApiFailure(L"QUISTA:GetFCAdapterInfo - could not get adapter handle from HBA API");
        status_ = hba::kError;
        return false;
    }
    api_.refreshInformation(adapter);
    // Kept: stale attributes are not fetched again, unlike those of a port.
    status_ = api_.adapterAttributes(adapter, adapterAttributes_.get());
    if (status_ == hba::kOk) examinePorts(adapter);
    if (matched_) {
        hbaName_.assign(name);
        debugText(L"hbaName");
        debugAnsi(name);
    }
    return true;
}

/// Examines every port of an adapter: a later one that matches overwrites an earlier one's address.
void FcAdapterSearch::examinePorts(hba::Handle adapter) {
    const std::uint32_t ports = adapterAttributes_->NumberOfPorts;
    debugText(formatText(L"Number of ports %d\n", ports));
    for (std::uint32_t port = 0; port < ports; ++port) {
        debugText(formatText(L"Getting portAttributes for port %d\n", port));
        if (readPort(adapter, port)) examineMapping(adapter);
    }
}

/// @return true when the port's device name contains the path's port number. Kept: as a substring,
///         so that port 1 also matches a device named for port 12.
bool FcAdapterSearch::readPort(hba::Handle adapter, std::uint32_t port) {
    status_ = retryWhileStale([&] {
        api_.refreshInformation(adapter);
        const hba::Status status = api_.portAttributes(adapter, port, portAttributes_.get());
        debugText(formatText(L"Got port attributes for port %d", port));
        return status;
    });
    if (status_ != hba::kOk) return false;
    const char* name = portAttributes_->OSDeviceName;
    const std::string deviceName(name, strnlen(name, std::size(portAttributes_->OSDeviceName)));
    debugText(L"OSDeviceName ");
    debugAnsi(deviceName.c_str());
    return deviceName.find(portText_) != std::string::npos;
}

void FcAdapterSearch::examineMapping(hba::Handle adapter) {
    TargetMapping mapping;
    status_ = mapping.fetch(api_, adapter);
    if (status_ != hba::kOk) return;
    debugText(formatText(L"Got FcpTargetMapping. NumEntries = %d", mapping.reportedEntries()));
    for (std::uint32_t i = 0; i < mapping.entryCount(); ++i) {
        const hba::ScsiId& entry = mapping.entry(i);
        debugText(formatText(L"pMapping  ScsiBusNumber = %d", entry.ScsiBusNumber));
        debugText(formatText(L"pMapping  ScsiTargetNumber = %d", entry.ScsiTargetNumber));
        if (entry.ScsiBusNumber == path_.bus && entry.ScsiTargetNumber == path_.target) {
            takeMatch();
            return;
        }
    }
}

void FcAdapterSearch::takeMatch() {
    const std::uint8_t* wwn = portAttributes_->PortWWN.bytes;
    char text[32];
    std::snprintf(text, sizeof(text), "%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x", wwn[0], wwn[1],
                  wwn[2], wwn[3], wwn[4], wwn[5], wwn[6], wwn[7]);
    hbaAddress_.assign(text);
    debugText(L"hbaAddress\n");
    debugAnsi(text);
    matched_ = true;
}

}  // namespace

hba::Status GetFCPAdapterInfo(const PathAddress& path, AdapterText& hbaAddress,
                              AdapterText& hbaName) {
    return FcAdapterSearch(path, hbaAddress, hbaName).run();
}

}  // namespace quista

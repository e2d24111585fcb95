// The exports of the stand-in hbaapi.dll.
#include <windows.h>

#include <algorithm>
#include <cstring>

#include "adapters/hba_api.h"
#include "simulator/standins/hba_standin.h"
#include "simulator/standins/host_reader.h"

namespace quista::simulator {

namespace {

constexpr hba::Status kNotSupported = 2;
constexpr hba::Status kInvalidHandle = 3;
constexpr hba::Status kIllegalIndex = 6;

// More than any adapter has; what a host says beyond is a mistake.
constexpr std::size_t kMaximumPorts = 64;

class HbaHost final : public HbaStandin {
  public:
    bool readHost() override;
    void setAdapters(const std::vector<HbaAdapter>& adapters) override { adapters_ = adapters; }
    void prescribe(const Answer& answer) override { script.prescribe(answer); }
    std::vector<std::string> calls() const override { return script.calls(); }
    void reset() override {
        adapters_.clear();
        script.clear();
    }

    const std::vector<HbaAdapter>& adapters() const { return adapters_; }

    const HbaAdapter* adapterAt(hba::Handle handle) const {
        return handle >= 1 && handle <= adapters_.size() ? &adapters_[handle - 1] : nullptr;
    }

    CallScript script;

  private:
    /// The adapter of this name, added when there is none yet.
    HbaAdapter& adapterNamed(const std::string& name);

    std::vector<HbaAdapter> adapters_;
};

HbaAdapter& HbaHost::adapterNamed(const std::string& name) {
    for (HbaAdapter& adapter : adapters_) {
        if (adapter.name == name) return adapter;
    }
    return adapters_.emplace_back(HbaAdapter{name});
}

bool HbaHost::readHost() {
    const HostReader reader;
    adapters_.clear();
    if (!reader.isConnected()) return false;
    reader.visit(L"Simulator_FcPort", [&](IWbemClassObject* instance) {
        HbaAdapter& adapter = adapterNamed(narrow(readText(instance, L"AdapterName")));
        const std::size_t index = readNumber(instance, L"PortIndex");
        if (index >= kMaximumPorts) return;
        if (adapter.ports.size() <= index) adapter.ports.resize(index + 1);
        HbaPort& port = adapter.ports[index];
        port.osDeviceName = narrow(readText(instance, L"OSDeviceName"));
        const std::vector<std::uint8_t> wwn = readBytes(instance, L"PortWWN");
        std::copy_n(wwn.begin(), std::min(wwn.size(), port.wwn.size()), port.wwn.begin());
    });
    reader.visit(L"Simulator_FcTarget", [&](IWbemClassObject* instance) {
        adapterNamed(narrow(readText(instance, L"AdapterName")))
            .targets.push_back({readNumber(instance, L"ScsiBusNumber"),
                                readNumber(instance, L"ScsiTargetNumber")});
    });
    return true;
}

HbaHost& host() {
    static HbaHost standin;
    return standin;
}

std::string numbers(std::uint32_t first) {
    return std::to_string(first);
}

std::string numbers(std::uint32_t first, std::uint32_t second) {
    return std::to_string(first) + " " + std::to_string(second);
}

/// Writes a text of the API, which has 256 bytes and a terminator only when there is room for it.
void writeText(const std::string& text, char* field) {
    constexpr std::size_t kFieldBytes = 256;
    const std::size_t length = std::min(text.size(), kFieldBytes);
    std::memcpy(field, text.data(), length);
    if (length < kFieldBytes) field[length] = '\0';
}

void fillPort(const HbaPort& port, hba::PortAttributes& attributes) {
    attributes = {};
    std::memcpy(attributes.PortWWN.bytes, port.wwn.data(), port.wwn.size());
    writeText(port.osDeviceName, attributes.OSDeviceName);
}

void fillEntry(const HbaTarget& target, hba::FcpScsiEntry& entry) {
    entry = {};
    entry.ScsiIdentifier.ScsiBusNumber = target.bus;
    entry.ScsiIdentifier.ScsiTargetNumber = target.target;
}

hba::Status mappingOf(const HbaAdapter& adapter, const Answer* answer,
                      hba::FcpTargetMapping& mapping) {
    const auto available = static_cast<std::uint32_t>(adapter.targets.size());
    const std::uint32_t room = mapping.NumberOfEntries;
    std::uint32_t delivered = std::min(room, available);
    if (answer != nullptr) {
        delivered = std::min(answer->delivered.value_or(delivered), available);
    }
    for (std::uint32_t i = 0; i < delivered; ++i) fillEntry(adapter.targets[i], mapping.entry[i]);
    mapping.NumberOfEntries = answer != nullptr ? answer->reported.value_or(available) : available;
    if (answer != nullptr) return answer->result;
    return available > room ? hba::kMoreData : hba::kOk;
}

}  // namespace

}  // namespace quista::simulator

extern "C" {

using namespace quista::simulator;
namespace hba = quista::hba;

HbaStandin* quistaHbaStandin() {
    return &host();
}

hba::Status HBA_LoadLibrary() {
    const Answer* answer = host().script.record("HBA_LoadLibrary");
    return answer != nullptr ? answer->result : hba::kOk;
}

hba::Status HBA_FreeLibrary() {
    const Answer* answer = host().script.record("HBA_FreeLibrary");
    return answer != nullptr ? answer->result : hba::kOk;
}

std::uint32_t HBA_GetNumberOfAdapters() {
    const Answer* answer = host().script.record("HBA_GetNumberOfAdapters");
    if (answer != nullptr) return answer->result;
    return static_cast<std::uint32_t>(host().adapters().size());
}

hba::Handle HBA_OpenAdapter(char* name) {
    const Answer* answer = host().script.record("HBA_OpenAdapter", name);
    if (answer != nullptr) return answer->result;
    const auto& adapters = host().adapters();
    const auto found = std::find_if(adapters.begin(), adapters.end(),
                                    [&](const HbaAdapter& each) { return each.name == name; });
    if (found == adapters.end()) return 0;
    return static_cast<hba::Handle>(found - adapters.begin()) + 1;
}

void HBA_CloseAdapter(hba::Handle handle) {
    host().script.record("HBA_CloseAdapter", numbers(handle));
}

void HBA_RefreshInformation(hba::Handle handle) {
    host().script.record("HBA_RefreshInformation", numbers(handle));
}

hba::Status HBA_GetAdapterName(std::uint32_t index, char* name) {
    const Answer* answer = host().script.record("HBA_GetAdapterName", numbers(index));
    if (answer != nullptr) return answer->result;
    if (index >= host().adapters().size()) return kIllegalIndex;
    writeText(host().adapters()[index].name, name);
    return hba::kOk;
}

hba::Status HBA_GetAdapterAttributes(hba::Handle handle, hba::AdapterAttributes* attributes) {
    const Answer* answer = host().script.record("HBA_GetAdapterAttributes", numbers(handle));
    const HbaAdapter* adapter = host().adapterAt(handle);
    if (adapter == nullptr) return kInvalidHandle;
    *attributes = {};
    attributes->NumberOfPorts = static_cast<std::uint32_t>(adapter->ports.size());
    return answer != nullptr ? answer->result : hba::kOk;
}

hba::Status HBA_GetAdapterPortAttributes(hba::Handle handle, std::uint32_t port,
                                         hba::PortAttributes* attributes) {
    const Answer* answer =
        host().script.record("HBA_GetAdapterPortAttributes", numbers(handle, port));
    const HbaAdapter* adapter = host().adapterAt(handle);
    if (adapter == nullptr) return kInvalidHandle;
    if (port >= adapter->ports.size()) return kIllegalIndex;
    fillPort(adapter->ports[port], *attributes);
    return answer != nullptr ? answer->result : hba::kOk;
}

hba::Status HBA_GetFcpTargetMapping(hba::Handle handle, hba::FcpTargetMapping* mapping) {
    const Answer* answer =
        host().script.record("HBA_GetFcpTargetMapping", numbers(handle, mapping->NumberOfEntries));
    const HbaAdapter* adapter = host().adapterAt(handle);
    return adapter == nullptr ? kInvalidHandle : mappingOf(*adapter, answer, *mapping);
}

hba::Status HBA_GetPortAttributesByWWN(hba::Handle handle, hba::Wwn wwn,
                                       hba::PortAttributes* attributes) {
    host().script.record("HBA_GetPortAttributesByWWN", numbers(handle));
    const HbaAdapter* adapter = host().adapterAt(handle);
    if (adapter == nullptr) return kInvalidHandle;
    for (const HbaPort& port : adapter->ports) {
        if (std::memcmp(port.wwn.data(), wwn.bytes, port.wwn.size()) != 0) continue;
        fillPort(port, *attributes);
        return hba::kOk;
    }
    return hba::kError;
}

hba::Status HBA_SendScsiInquiry(hba::Handle handle, hba::Wwn, std::uint64_t, std::uint8_t,
                                std::uint32_t, void*, std::uint32_t, void*, std::uint32_t) {
    host().script.record("HBA_SendScsiInquiry", numbers(handle));
    return kNotSupported;
}
}

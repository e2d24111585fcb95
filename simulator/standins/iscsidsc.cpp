// The exports of the stand-in iscsidsc.dll.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <new>

#include "adapters/iscsi_discovery.h"
#include "simulator/standins/host_reader.h"
#include "simulator/standins/iscsi_standin.h"

namespace quista::simulator {

namespace {

class IscsiHost final : public IscsiStandin {
  public:
    bool readHost() override;
    void setMappings(const std::vector<IscsiMapping>& list) override { mappings = list; }
    void setSessions(const std::vector<IscsiSession>& list) override { sessions = list; }
    void prescribe(const Answer& answer) override { script.prescribe(answer); }
    std::vector<std::string> calls() const override { return script.calls(); }
    void reset() override {
        mappings.clear();
        sessions.clear();
        script.clear();
    }

    std::vector<IscsiMapping> mappings;
    std::vector<IscsiSession> sessions;
    CallScript script;
};

bool IscsiHost::readHost() {
    const HostReader reader;
    mappings.clear();
    sessions.clear();
    if (!reader.isConnected()) return false;
    reader.visit(L"Simulator_IscsiSession", [&](IWbemClassObject* instance) {
        const IscsiSessionId id{0, readNumber(instance, L"AdapterSpecific")};
        mappings.push_back(
            {readText(instance, L"InitiatorName"), readText(instance, L"OSDeviceName"),
             readNumber(instance, L"OSBusNumber"), readNumber(instance, L"OSTargetNumber"), id});
        IscsiSession session{id, {}, {}};
        for (const std::wstring& address : readTexts(instance, L"InitiatorAddresses")) {
            session.initiatorAddresses.emplace_back(address);
        }
        sessions.push_back(session);
    });
    return true;
}

IscsiHost& host() {
    static IscsiHost standin;
    return standin;
}

/// Writes a text into a field, with a terminator when there is room for it.
template <std::size_t Size>
void writeText(const std::wstring& text, WCHAR (&field)[Size]) {
    const std::size_t length = std::min(text.size(), Size);
    std::wmemcpy(field, text.data(), length);
    if (length < Size) field[length] = L'\0';
}

/// A caller's buffer: records from its beginning on, what they point to behind them.
class RecordWriter {
  public:
    explicit RecordWriter(void* buffer) : next_(static_cast<std::byte*>(buffer)) {}

    template <typename Record>
    Record* take(std::size_t count) {
        // 8 bytes is what every record of the library is aligned to.
        constexpr std::size_t kAlignment = 8;
        const std::size_t bytes = count * sizeof(Record);
        std::byte* block = next_;
        next_ += (bytes + kAlignment - 1) / kAlignment * kAlignment;
        std::memset(block, 0, bytes);
        return std::launder(reinterpret_cast<Record*>(block));
    }

    WCHAR* text(const std::optional<std::wstring>& text) {
        if (!text) return nullptr;
        WCHAR* copy = take<WCHAR>(text->size() + 1);
        std::wmemcpy(copy, text->c_str(), text->size());
        return copy;
    }

  private:
    std::byte* next_;
};

iscsi::SessionId identifier(const IscsiSessionId& id) {
    return {id.adapterUnique, id.adapterSpecific};
}

// More than the records take, so that what they point to has room too.
constexpr std::size_t kTextRoom = 4096;

std::size_t sizeOf(const std::vector<IscsiMapping>& mappings) {
    return mappings.size() * sizeof(iscsi::TargetMapping);
}

std::size_t sizeOf(const std::vector<IscsiSession>& sessions) {
    return sessions.size() * (sizeof(iscsi::Session) + kTextRoom);
}

void write(const std::vector<IscsiMapping>& mappings, void* buffer) {
    auto* records = RecordWriter(buffer).take<iscsi::TargetMapping>(mappings.size());
    for (const IscsiMapping& mapping : mappings) {
        iscsi::TargetMapping& record = *records++;
        writeText(mapping.initiatorName, record.InitiatorName);
        writeText(mapping.osDeviceName, record.OSDeviceName);
        record.Session = identifier(mapping.session);
        record.OSBusNumber = mapping.bus;
        record.OSTargetNumber = mapping.target;
    }
}

void write(const std::vector<IscsiSession>& sessions, void* buffer) {
    RecordWriter writer(buffer);
    auto* records = writer.take<iscsi::Session>(sessions.size());
    for (const IscsiSession& session : sessions) {
        iscsi::Session& record = *records++;
        record.Id = identifier(session.id);
        record.ConnectionCount = session.claimedConnections.value_or(
            static_cast<std::uint32_t>(session.initiatorAddresses.size()));
        if (session.initiatorAddresses.empty()) continue;
        record.Connections = writer.take<iscsi::Connection>(session.initiatorAddresses.size());
        for (std::size_t i = 0; i < session.initiatorAddresses.size(); ++i) {
            record.Connections[i].InitiatorAddress = writer.text(session.initiatorAddresses[i]);
        }
    }
}

std::string argumentsOf(ULONG size, ULONG count, const void* buffer) {
    if (buffer == nullptr) return "sizing";
    return "size " + std::to_string(size) + " count " + std::to_string(count);
}

/// A call of either function: without a buffer it tells the size, with one that is large enough it
/// delivers the records.
template <typename List>
ULONG report(const char* function, const List& list, ULONG* size, ULONG* count, void* buffer) {
    const Answer* answer = host().script.record(function, argumentsOf(*size, *count, buffer));
    const auto needed = static_cast<ULONG>(sizeOf(list));
    const ULONG room = *size;
    *size = answer != nullptr ? answer->size.value_or(needed) : needed;
    const bool fits = buffer != nullptr && room >= needed;
    if (fits) write(list, buffer);
    *count = fits ? static_cast<ULONG>(list.size()) : 0;
    if (answer != nullptr) *count = answer->reported.value_or(*count);
    if (answer != nullptr) return answer->result;
    return needed == 0 || fits ? ERROR_SUCCESS : ERROR_INSUFFICIENT_BUFFER;
}

}  // namespace

}  // namespace quista::simulator

extern "C" {

using namespace quista::simulator;
namespace iscsi = quista::iscsi;

IscsiStandin* quistaIscsiStandin() {
    return &host();
}

ULONG WINAPI ReportActiveIScsiTargetMappingsW(ULONG* size, ULONG* count,
                                              iscsi::TargetMapping* mappings) {
    return report("ReportActiveIScsiTargetMappingsW", host().mappings, size, count, mappings);
}

ULONG WINAPI GetIScsiSessionListW(ULONG* size, ULONG* count, iscsi::Session* sessions) {
    return report("GetIScsiSessionListW", host().sessions, size, count, sessions);
}
}

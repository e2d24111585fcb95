#include "cli/simulated_adapters.h"

#include <fmt/format.h>

#include "cli/failure.h"
#include "cli/names.h"
#include "cli/text.h"
#include "simulator/standins/hba_standin.h"
#include "simulator/standins/iscsi_standin.h"

namespace quista::cli {

SimulatedAdapters::Library::Library(const std::wstring& file)
    : module_(LoadLibraryW(file.c_str())) {
    if (module_ != nullptr) return;
    const DWORD error = GetLastError();
    throw Failure(ExitCode::kFailed, DSM_SUCCESS,
                  fmt::format("cannot load the simulator's stand-in {}: {} ({})", toUtf8(file),
                              systemText(error), error),
                  "--simulate needs the folder standins beside quistactl.exe.");
}

SimulatedAdapters::Library::~Library() {
    FreeLibrary(module_);
}

template <class Function>
auto* SimulatedAdapters::Library::standin(const char* function) const {
    const auto get =
        reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, function)));
    if (get == nullptr) {
        throw Failure(ExitCode::kFailed, DSM_SUCCESS,
                      "the simulator's stand-ins are of another version than quistactl.exe");
    }
    return get();
}

// A host that says nothing of adapters has none.
SimulatedAdapters::SimulatedAdapters(const std::wstring& folder)
    : fibreChannel_(folder + L"\\hbaapi.dll"), iscsi_(folder + L"\\iscsidsc.dll") {
    fibreChannel_.standin<simulator::HbaStandinFunction>("quistaHbaStandin")->readHost();
    iscsi_.standin<simulator::IscsiStandinFunction>("quistaIscsiStandin")->readHost();
}

}  // namespace quista::cli

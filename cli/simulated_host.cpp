#include "cli/simulated_host.h"

#include <fmt/format.h>

#include "cli/failure.h"
#include "cli/names.h"
#include "cli/text.h"

namespace quista::cli {
namespace {

constexpr const wchar_t* kSimulatorFile = L"quistasim.dll";

template <class Function>
Function functionOf(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// Stays loaded until the process ends: objects of the simulator may outlive a session.
HMODULE loadSimulator(const std::wstring& folder) {
    const std::wstring file = folder + L"\\" + kSimulatorFile;
    const HMODULE module = LoadLibraryW(file.c_str());
    if (module != nullptr) return module;
    const DWORD error = GetLastError();
    throw Failure(ExitCode::kFailed, DSM_SUCCESS,
                  fmt::format("cannot load the simulator {}: {} ({})", toUtf8(file),
                              systemText(error), error),
                  "--simulate needs quistasim.dll in the folder of quistactl.exe.");
}

auto makeSimulator(const std::wstring& folder) {
    const HMODULE module = loadSimulator(folder);
    const auto create =
        functionOf<simulator::CreateSimulatorFunction>(module, "quistaCreateSimulator");
    const auto destroy =
        functionOf<simulator::DestroySimulatorFunction>(module, "quistaDestroySimulator");
    if (create == nullptr || destroy == nullptr) {
        throw Failure(ExitCode::kFailed, DSM_SUCCESS,
                      "quistasim.dll is of another version than quistactl.exe");
    }
    return std::unique_ptr<simulator::Simulator, simulator::DestroySimulatorFunction>(create(),
                                                                                      destroy);
}

// "file:line:column: reason"; without a line where the file cannot be read at all.
std::string describe(const simulator::LoadError& error) {
    const std::string file = toUtf8(error.file);
    const std::string reason = toUtf8(error.reason);
    if (error.line != 0) return fmt::format("{}:{}:{}: {}", file, error.line, error.column, reason);
    return fmt::format("{}: {} (expected a MOF file or a sample: standard, degraded, empty, bare)",
                       file, reason);
}

std::wstring fullPath(const std::wstring& filePath) {
    std::wstring full(GetFullPathNameW(filePath.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(
        GetFullPathNameW(filePath.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

}  // namespace

SimulatedHost::SimulatedHost(const std::wstring& folder, const std::string& host)
    : name_(host), filePath_(fullPath(toWide(host))), simulator_(makeSimulator(folder)) {
    simulator::LoadError error;
    if (!simulator_->load(toWide(host), error)) {
        throw UsageError(
            fmt::format("cannot load the simulated host '{}': {}", host, describe(error)));
    }
}

void SimulatedHost::start() {
    const HRESULT result = simulator_->start();
    if (SUCCEEDED(result)) return;
    throw Failure(ExitCode::kFailed, DSM_SUCCESS,
                  fmt::format("cannot start the simulated host: {} (0x{:08x})",
                              systemText(static_cast<std::uint32_t>(result)),
                              static_cast<std::uint32_t>(result)));
}

void SimulatedHost::removeClasses(const std::string& classFile) {
    simulator::LoadError error;
    if (simulator_->removeClassesOf(toWide(classFile), error)) return;
    throw UsageError(
        fmt::format("cannot leave out the classes of '{}': {} (expected korvadsm, pdo, "
                    "lbpolicy or mpio)",
                    classFile, toUtf8(error.reason)));
}

void SimulatedHost::save() const {
    write(filePath_, name_);
}

void SimulatedHost::saveTo(const std::string& file) const {
    if (simulator_->isSample(toWide(file))) {
        throw UsageError(
            fmt::format("'{0}' is the name of a sample (expected a file name with an extension, "
                        "such as {0}.mof)",
                        file));
    }
    write(toWide(file), file);
}

void SimulatedHost::write(const std::wstring& filePath, const std::string& shownAs) const {
    simulator::LoadError error;
    if (simulator_->save(filePath, error)) return;
    throw Failure(
        ExitCode::kFailed, DSM_SUCCESS,
        fmt::format("cannot write the simulated host {}: {}", shownAs, toUtf8(error.reason)));
}

}  // namespace quista::cli

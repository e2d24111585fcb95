#include "cli/simulated_registry.h"

#include <vector>

#include "cli/failure.h"
#include "frame/brand.h"

namespace quista::cli {
namespace {

constexpr const wchar_t* kParent = L"Software\\Quista Simulator";
constexpr const wchar_t* kServiceParameters =
    L"SYSTEM\\CurrentControlSet\\Services\\korvadsm\\Parameters";

constexpr const wchar_t* kReservationKey = L"PersistentReservationKey";

std::vector<unsigned char> readReservationKey(HKEY root) {
    std::vector<unsigned char> bytes(64);
    DWORD size = static_cast<DWORD>(bytes.size());
    const LSTATUS status = RegGetValueW(root, kServiceParameters, kReservationKey, RRF_RT_ANY,
                                        nullptr, bytes.data(), &size);
    bytes.resize(status == ERROR_SUCCESS ? size : 0);
    return bytes;
}

HKEY makeKey(HKEY parent, const std::wstring& path) {
    HKEY key = nullptr;
    const LSTATUS status = RegCreateKeyExW(parent, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                                           KEY_ALL_ACCESS, nullptr, &key, nullptr);
    if (status == ERROR_SUCCESS) return key;
    throw Failure(ExitCode::kFailed, DSM_SUCCESS,
                  "the registry of the simulated host cannot be made");
}

}  // namespace

SimulatedRegistry::SimulatedRegistry(const std::wstring& installDir, const SimulatedHost& host)
    : path_(std::wstring(kParent) + L"\\" + std::to_wstring(GetCurrentProcessId())),
      root_(makeKey(HKEY_CURRENT_USER, path_)) {
    const HKEY brand = makeKey(root_, kVelmoraKey);
    RegSetValueExW(brand, L"InstallDir", 0, REG_SZ,
                   reinterpret_cast<const BYTE*>(installDir.c_str()),
                   static_cast<DWORD>((installDir.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(brand);
    const HKEY parameters = makeKey(root_, kServiceParameters);
    const std::vector<unsigned char> key = host.registryValue(kServiceParameters, kReservationKey);
    if (!key.empty()) {
        RegSetValueExW(parameters, kReservationKey, 0, REG_BINARY, key.data(),
                       static_cast<DWORD>(key.size()));
    }
    RegCloseKey(parameters);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, root_);
}

SimulatedRegistry::~SimulatedRegistry() {
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(root_);
    RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, path_.c_str());
}

void SimulatedRegistry::keepChanges(SimulatedHost& host) const {
    const std::vector<unsigned char> key = readReservationKey(root_);
    if (key == host.registryValue(kServiceParameters, kReservationKey)) return;
    host.setRegistryValue(kServiceParameters, kReservationKey, key);
}

}  // namespace quista::cli

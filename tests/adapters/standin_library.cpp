#include "tests/adapters/standin_library.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <utility>

#include "tests/support/text.h"

namespace quista::test {

namespace {

std::wstring standinPath(const std::wstring& library, const std::string& missing) {
    if (missing.empty()) return QUISTA_STANDIN_FOLDER L"/" + library;
    return QUISTA_INCOMPLETE_FOLDER L"/" + widen(missing) + L"/" + library;
}

template <typename Function>
Function functionAt(const LoadedLibrary& library, const char* name) {
    return reinterpret_cast<Function>(library.function(name));
}

}  // namespace

LoadedLibrary::LoadedLibrary(const std::wstring& path) : module_(LoadLibraryW(path.c_str())) {
    if (module_ == nullptr) throw std::runtime_error("cannot load " + narrow(path));
}

void LoadedLibrary::unload() {
    if (module_ != nullptr) FreeLibrary(std::exchange(module_, nullptr));
}

void* LoadedLibrary::function(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(module_, name));
}

HbaLibrary::HbaLibrary(const std::string& missing)
    : library_(standinPath(L"hbaapi.dll", missing)),
      standin_(functionAt<simulator::HbaStandinFunction>(library_, "quistaHbaStandin")()) {
    standin_->reset();
}

IscsiLibrary::IscsiLibrary(const std::string& missing)
    : library_(standinPath(L"iscsidsc.dll", missing)),
      standin_(functionAt<simulator::IscsiStandinFunction>(library_, "quistaIscsiStandin")()) {
    standin_->reset();
}

}  // namespace quista::test

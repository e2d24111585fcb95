// The stand-ins for the platform's adapter libraries, as tests load them.
#pragma once

#include <windows.h>

#include <string>

#include "simulator/standins/hba_standin.h"
#include "simulator/standins/iscsi_standin.h"

namespace quista::test {

/// A library loaded by its full path, so that whoever asks for its bare name finds it.
class LoadedLibrary {
  public:
    explicit LoadedLibrary(const std::wstring& path);
    ~LoadedLibrary() { unload(); }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    void unload();
    void* function(const char* name) const;

  private:
    HMODULE module_;
};

/// The stand-in hbaapi.dll without adapters; as a variant it lacks one function.
class HbaLibrary {
  public:
    explicit HbaLibrary(const std::string& missing = "");

    simulator::HbaStandin* operator->() const { return standin_; }
    /// Gives up the test's own use of the library.
    void unload() { library_.unload(); }

  private:
    LoadedLibrary library_;
    simulator::HbaStandin* standin_;
};

/// The stand-in iscsidsc.dll without mappings and sessions; as a variant it lacks one function.
class IscsiLibrary {
  public:
    explicit IscsiLibrary(const std::string& missing = "");

    simulator::IscsiStandin* operator->() const { return standin_; }

  private:
    LoadedLibrary library_;
    simulator::IscsiStandin* standin_;
};

/// Whether a library of this name is loaded.
inline bool isLoaded(const wchar_t* name) {
    return GetModuleHandleW(name) != nullptr;
}

}  // namespace quista::test

// Stand-ins for the platform's adapter libraries, which answer for a simulated host.
#pragma once

#include <windows.h>

#include <string>

namespace quista::cli {

class SimulatedAdapters {
  public:
    /// Loads the stand-ins from `folder` and lets them read the adapters of the host that plays WMI
    /// on this thread. Whoever asks for the libraries by name gets them, as long as this lives.
    /// Throws Failure.
    explicit SimulatedAdapters(const std::wstring& folder);

  private:
    class Library {
      public:
        explicit Library(const std::wstring& file);
        ~Library();
        Library(const Library&) = delete;
        Library& operator=(const Library&) = delete;

        /// The stand-in's own set-up object. Throws Failure.
        template <class Function>
        auto* standin(const char* function) const;

      private:
        HMODULE module_;
    };

    Library fibreChannel_;
    Library iscsi_;
};

}  // namespace quista::cli

// The HBA API library, loaded at run time so that the library also loads on a machine without Fibre
// Channel support.
#pragma once

#include <windows.h>

#include <list>
#include <map>
#include <string>
#include <utility>

#include "adapters/hba_api.h"

namespace quista {

/// Loads "hbaapi.dll" for as long as it lives. Every operation is a guard round one function of the
/// API and does nothing while the wrapper is not usable.
class HBAAPIWrapper {
  public:
    /// Loads the library, resolves its functions and initialises it.
    HBAAPIWrapper();
    /// Adapters opened through the wrapper lapse with the library; they are never closed one by
    /// one.
    virtual ~HBAAPIWrapper();
    HBAAPIWrapper(const HBAAPIWrapper&) = delete;
    HBAAPIWrapper& operator=(const HBAAPIWrapper&) = delete;

    bool isUsable() const { return status_ == 0; }
    /// 0, the system's error code of the load or look-up that failed, or 0x80004005.
    DWORD status() const { return status_; }

    std::uint32_t numberOfAdapters() const;
    /// Opens an adapter, or gives the handle of one that is already open; 0 on failure.
    hba::Handle openAdapter(const std::string& name);
    void refreshInformation(hba::Handle adapter) const;
    hba::Status adapterName(std::uint32_t index, char* name) const;
    hba::Status adapterAttributes(hba::Handle adapter, hba::AdapterAttributes* attributes) const;
    hba::Status portAttributes(hba::Handle adapter, std::uint32_t port,
                               hba::PortAttributes* attributes) const;
    hba::Status fcpTargetMapping(hba::Handle adapter, hba::FcpTargetMapping* mapping) const;

  private:
    using LibraryFunction = hba::Status (*)();
    using NumberOfAdaptersFunction = std::uint32_t (*)();
    using OpenAdapterFunction = hba::Handle (*)(char*);
    using HandleFunction = void (*)(hba::Handle);
    using AdapterNameFunction = hba::Status (*)(std::uint32_t, char*);
    using AdapterAttributesFunction = hba::Status (*)(hba::Handle, hba::AdapterAttributes*);
    using PortAttributesFunction = hba::Status (*)(hba::Handle, std::uint32_t,
                                                   hba::PortAttributes*);
    using TargetMappingFunction = hba::Status (*)(hba::Handle, hba::FcpTargetMapping*);
    using UnusedFunction = void (*)();

    bool resolveAll();
    template <typename Function>
    bool resolve(const char* name, Function& function);

    struct OpenedAdapter {
        hba::Handle handle;
        std::uint32_t useCount;
    };

    HMODULE library_ = nullptr;
    DWORD status_ = 0;
    LibraryFunction loadLibrary_ = nullptr;
    LibraryFunction freeLibrary_ = nullptr;
    NumberOfAdaptersFunction getNumberOfAdapters_ = nullptr;
    OpenAdapterFunction openAdapter_ = nullptr;
    HandleFunction closeAdapter_ = nullptr;
    HandleFunction refreshInformation_ = nullptr;
    AdapterNameFunction getAdapterName_ = nullptr;
    AdapterAttributesFunction getAdapterAttributes_ = nullptr;
    PortAttributesFunction getAdapterPortAttributes_ = nullptr;
    TargetMappingFunction getFcpTargetMapping_ = nullptr;
    UnusedFunction getPortAttributesByWwn_ = nullptr;
    UnusedFunction sendScsiInquiry_ = nullptr;
    std::map<std::string, OpenedAdapter> adapters_;
    std::list<std::string> openedNames_;
};

}  // namespace quista

#include "adapters/hba_api_wrapper.h"

#include <cstring>

#include "quista/frame.h"
#include "quista/status.h"

namespace quista {

HBAAPIWrapper::HBAAPIWrapper() {
    library_ = LoadLibraryW(L"hbaapi.dll");
    if (library_ == nullptr) {
        status_ = GetLastError();
        ReportError(L"Load Library failed", DSM_HBA_API_LIBRARY_LOAD_FAILED);
        return;
    }
    if (resolveAll() && loadLibrary_() != hba::kOk) status_ = static_cast<DWORD>(E_FAIL);
}

HBAAPIWrapper::~HBAAPIWrapper() {
    if (library_ == nullptr) return;
    if (freeLibrary_ != nullptr) freeLibrary_();
    FreeLibrary(library_);
}

/// Resolves in this order; the first that is missing ends it. All must be there, although the last
/// two and the one that closes an adapter are never called.
bool HBAAPIWrapper::resolveAll() {
    return resolve("HBA_LoadLibrary", loadLibrary_) && resolve("HBA_FreeLibrary", freeLibrary_) &&
           resolve("HBA_GetNumberOfAdapters", getNumberOfAdapters_) &&
           resolve("HBA_OpenAdapter", openAdapter_) && resolve("HBA_CloseAdapter", closeAdapter_) &&
           resolve("HBA_RefreshInformation", refreshInformation_) &&
           resolve("HBA_GetAdapterName", getAdapterName_) &&
           resolve("HBA_GetAdapterAttributes", getAdapterAttributes_) &&
           resolve("HBA_GetAdapterPortAttributes", getAdapterPortAttributes_) &&
           resolve("HBA_GetFcpTargetMapping", getFcpTargetMapping_) &&
           resolve("HBA_GetPortAttributesByWWN", getPortAttributesByWwn_) &&
           resolve("HBA_SendScsiInquiry", sendScsiInquiry_);
}

template <typename Function>
bool HBAAPIWrapper::resolve(const char* name, Function& function) {
    const FARPROC address = GetProcAddress(library_, name);
    if (address == nullptr) {
        status_ = GetLastError();
        return false;
    }
    static_assert(sizeof(function) == sizeof(address));
    std::memcpy(&function, &address, sizeof(function));
    return true;
}

std::uint32_t HBAAPIWrapper::numberOfAdapters() const {
    return isUsable() ? getNumberOfAdapters_() : 0;
}

hba::Handle HBAAPIWrapper::openAdapter(const std::string& name) {
    if (!isUsable()) return 0;
    const auto opened = adapters_.find(name);
    if (opened != adapters_.end()) {
        ++opened->second.useCount;
        return opened->second.handle;
    }
    std::string argument = name;
    const hba::Handle handle = openAdapter_(argument.data());
    if (handle != 0) {
        adapters_[name] = {handle, 1};
        openedNames_.push_back(name);
    }
    return handle;
}

void HBAAPIWrapper::refreshInformation(hba::Handle adapter) const {
    if (isUsable()) refreshInformation_(adapter);
}

hba::Status HBAAPIWrapper::adapterName(std::uint32_t index, char* name) const {
    return isUsable() ? getAdapterName_(index, name) : hba::kError;
}

hba::Status HBAAPIWrapper::adapterAttributes(hba::Handle adapter,
                                             hba::AdapterAttributes* attributes) const {
    return isUsable() ? getAdapterAttributes_(adapter, attributes) : hba::kError;
}

hba::Status HBAAPIWrapper::portAttributes(hba::Handle adapter, std::uint32_t port,
                                          hba::PortAttributes* attributes) const {
    return isUsable() ? getAdapterPortAttributes_(adapter, port, attributes) : hba::kError;
}

hba::Status HBAAPIWrapper::fcpTargetMapping(hba::Handle adapter,
                                            hba::FcpTargetMapping* mapping) const {
    return isUsable() ? getFcpTargetMapping_(adapter, mapping) : hba::kError;
}

}  // namespace quista

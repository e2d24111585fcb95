#include "frame/session.h"

#include "frame/bstr.h"
#include "frame/console.h"
#include "frame/error_log.h"
#include "frame/guard.h"
#include "frame/windows_version.h"
#include "quista/frame.h"
#include "quista/mpio.h"

namespace quista {

IWbemLocator* gLocator = nullptr;
IWbemServices* gServices = nullptr;
IWbemServices* gCimv2Services = nullptr;
IMofCompiler* gMofCompiler = nullptr;
unsigned long gMpioLunCount = 0;

namespace {

/// Connects `services` to a namespace. An earlier connection is overwritten.
DWORD connect(const wchar_t* name, IWbemServices*& services) {
    const UniqueBstr path(name);
    const HRESULT result = gLocator->ConnectServer(path.get(), nullptr, nullptr, nullptr, 0,
                                                   nullptr, nullptr, &services);
    if (result == S_OK) return DSM_SUCCESS;
    ReportError(L"IWbemLocator::ConnectServer", static_cast<DWORD>(result));
    // Kept: the console names the invalid namespace whatever the result was.
    traceFormatted(L"Namespace: %ls (%x)\n", name, WBEM_E_INVALID_NAMESPACE);
    return DSM_WMI_CONNECT_FAILED;
}

DWORD openSession() {
    // Kept: a session that is already open is overwritten, not released.
    const HRESULT result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                                            IID_IWbemLocator, reinterpret_cast<void**>(&gLocator));
    if (result != S_OK || gLocator == nullptr) {
        // Kept: the line carries code 0, not the failure's own.
        ReportError(L"CoCreateInstance(WbemLocator)", 0);
        return DSM_WMI_CONNECT_FAILED;
    }
    const DWORD wmi = connect(L"root\\wmi", gServices);
    const DWORD cimv2 = connect(L"root\\cimv2", gCimv2Services);
    return wmi != DSM_SUCCESS ? wmi : cimv2;
}

/// MPIO's classes are repaired on Windows before 6.1 only; on 6.0 the caller has to allow it.
bool mayRepairMpioClasses(bool allowVistaRepair) {
    const WindowsVersion version = windowsVersion();
    if (!version.known) return false;
    return version.major < 6 || (version.major == 6 && version.minor == 0 && allowVistaRepair);
}

void repairVendorClassesIfMissing() {
    DWORD result = DSMCheckForKORVADSMClasses();
    if (result != 0) result = DSMRepairWMI(1);
    if (result != 0) ReportError(L"DSM_INITIALIZED failed to repair KORVADSM classes", result);
}

template <typename Interface>
void releaseAndForget(Interface*& pointer) {
    if (pointer != nullptr) pointer->Release();
    pointer = nullptr;
}

}  // namespace

}  // namespace quista

unsigned long DSMInitialize(int allowVistaRepair) {
    using namespace quista;
    return guarded(DSM_WMI_CONNECT_FAILED, [&]() -> DWORD {
        DWORD status = openSession();
        if (status == DSM_SUCCESS) status = DSMGetNumberMpioLUNs(&gMpioLunCount);
        if (status != DSM_SUCCESS && mayRepairMpioClasses(allowVistaRepair != 0) &&
            DSMRepairWMI(0) == 0) {
            status = DSMGetNumberMpioLUNs(&gMpioLunCount);
        }
        // Its outcome does not change the status.
        if (status == DSM_SUCCESS) repairVendorClassesIfMissing();
        // Every initialisation leaves a line, by design.
        ReportError(L"DSM_INITIALIZED", DSM_INIT_DONE);
        return status;
    });
}

unsigned long DSMUninitialize() {
    using namespace quista;
    return guarded(DSM_SUCCESS, []() -> DWORD {
        releaseAndForget(gLocator);
        releaseAndForget(gMofCompiler);
        releaseAndForget(gServices);
        releaseAndForget(gCimv2Services);
        traceLine(L"WMI Uninitialized\n");
        return DSM_SUCCESS;
    });
}

unsigned long DSMCheckForKORVADSMClasses() {
    using namespace quista;
    return guarded(DSM_ERROR, []() -> DWORD {
        const UniqueBstr path(L"KORVADSM_LUNINFO");
        const HRESULT result = gServices != nullptr
                                   ? gServices->GetObject(path.get(), 0, nullptr, nullptr, nullptr)
                                   : E_POINTER;
        if (result == S_OK) return DSM_SUCCESS;
        ReportError(L"DSMCheckForKORVADSMLUNINFO()", static_cast<DWORD>(result));
        return DSM_ERROR;
    });
}

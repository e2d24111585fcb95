#include "bench/bench_host.h"

#include <windows.h>

#include <objbase.h>
#include <wbemcli.h>

#include <cstdint>
#include <list>
#include <stdexcept>

#include "quista/quista.h"

namespace quista::bench {

BenchHost::BenchHost(HostSize size) : size_(size), simulator_(quistaCreateSimulator()) {
    std::wstring mof;
    quistaGenerateHost(size.luns, size.pathsPerLun, mof);
    simulator::LoadError error;
    if (!simulator_->loadText(mof, L"generated", error)) throw std::runtime_error("host refused");
    if (FAILED(simulator_->start()) || DSMInitialize(0) != DSM_SUCCESS) {
        throw std::runtime_error("session refused");
    }
    findLastPath();
}

BenchHost::~BenchHost() {
    DSMUninitialize();
    quistaDestroySimulator(simulator_);
}

void BenchHost::findLastPath() {
    std::list<IWbemClassObject*> luns;
    long count = 0;
    KORVADSMGetAllDiskInfoEx(luns, count);
    if (luns.empty()) throw std::runtime_error("no LUNs");
    _KORVADSM_DISKINFO* last = nullptr;
    if (ParseDiskInfoKORVA(luns.back(), &last) != DSM_SUCCESS || last->NumberPaths == 0) {
        throw std::runtime_error("last LUN refused");
    }
    lastSerial_ = last->SerialNumber;
    const auto dsmId = static_cast<std::int32_t>(last->Paths[last->NumberPaths - 1].DsmId);
    lastPath_ = static_cast<unsigned long long>(static_cast<std::int64_t>(dsmId));
    CoTaskMemFree(last);
    for (IWbemClassObject* lun : luns) lun->Release();
}

}  // namespace quista::bench

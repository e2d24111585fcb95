// The simulator behind its public interface.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/com/class_factory.h"
#include "simulator/com/host.h"
#include "simulator/simulator.h"

namespace quista::simulator {

class SimulatedHost final : public Simulator {
  public:
    SimulatedHost();
    ~SimulatedHost() override;

    bool load(const std::wstring& fileOrSample, LoadError& error) override;
    bool loadText(const std::wstring& mof, const std::wstring& sourceName,
                  LoadError& error) override;
    void clear() override;
    std::wstring dump() const override;

    HRESULT start() override;
    void stop() override;

    bool removeClass(const std::wstring& nameSpace, const std::wstring& className) override;
    void removeInstances(const std::wstring& nameSpace, const std::wstring& className) override;
    bool removeProperty(const std::wstring& nameSpace, const std::wstring& className,
                        const std::wstring& property) override;
    std::size_t countInstances(const std::wstring& nameSpace,
                               const std::wstring& className) const override;

    void addFault(const Fault& fault) override;
    void addOverride(const ValueOverride& where, const VARIANT& value) override;
    void clearFaults() override;
    void setMethodResult(const std::wstring& className, const std::wstring& method,
                         const std::wstring& outParameter, const VARIANT& value) override;
    void setMethodWithoutOutput(const std::wstring& className, const std::wstring& method) override;
    void clearMethodResults() override;
    void setLocatorFailure(HRESULT result) override;
    void setCompilerFailure(HRESULT result) override;
    void setUnknownClassAtCreation(bool atCreation) override;
    void endProcessAfterNextCalls(unsigned calls, unsigned exitCode) override;

    std::vector<CallRecord> trace() const override;
    void clearTrace() override;
    void setTracing(bool enabled) override;
    LiveObjects liveObjects() const override;

    std::vector<unsigned char> registryValue(const std::wstring& keyPath,
                                             const std::wstring& valueName) const override;
    void setRegistryValue(const std::wstring& keyPath, const std::wstring& valueName,
                          const std::vector<unsigned char>& bytes) override;

    bool isSample(const std::wstring& fileOrSample) const override;
    bool isChanged() const override;
    bool save(const std::wstring& file, LoadError& error) override;
    bool removeClassesOf(const std::wstring& classFile, LoadError& error) override;

  private:
    std::shared_ptr<Host> host_;
    Registration registration_;
    Repository lastSeen_;  ///< as the last load or save left it
};

}  // namespace quista::simulator

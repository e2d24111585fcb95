#include "simulator/com/simulated_host.h"

#include <utility>

#include "simulator/com/sample_hosts.h"
#include "simulator/mof/mof_reader.h"
#include "simulator/mof/mof_source.h"
#include "simulator/mof/mof_writer.h"

namespace quista::simulator {
namespace {

bool report(const MofResult& result, LoadError& error) {
    if (result.ok()) return true;
    error = {result.error->file, result.error->line, result.error->column, result.error->reason};
    return false;
}

}  // namespace

SimulatedHost::SimulatedHost() : host_(std::make_shared<Host>()) {}

SimulatedHost::~SimulatedHost() {
    stop();
    // Clients may keep objects, and with them the host, for as long as they like; the values that
    // tests left in it may be such objects.
    clearFaults();
    clearMethodResults();
}

bool SimulatedHost::load(const std::wstring& fileOrSample, LoadError& error) {
    MofFileSource source;
    MofReader reader(host_->repository, source);
    return report(reader.loadFile(hostFile(fileOrSample)), error);
}

bool SimulatedHost::loadText(const std::wstring& mof, const std::wstring& sourceName,
                             LoadError& error) {
    MofFileSource source;
    MofReader reader(host_->repository, source);
    return report(reader.loadText(mof, sourceName), error);
}

void SimulatedHost::clear() {
    host_->repository.clear();
}

std::wstring SimulatedHost::dump() const {
    return writeMof(host_->repository);
}

HRESULT SimulatedHost::start() {
    return registration_.registerHost(host_);
}

void SimulatedHost::stop() {
    registration_.revoke();
}

bool SimulatedHost::removeClass(const std::wstring& nameSpace, const std::wstring& className) {
    return host_->repository.deleteClass(nameSpace, className) == RepositoryStatus::ok;
}

void SimulatedHost::removeInstances(const std::wstring& nameSpace, const std::wstring& className) {
    host_->repository.removeInstances(nameSpace, className);
}

bool SimulatedHost::removeProperty(const std::wstring& nameSpace, const std::wstring& className,
                                   const std::wstring& property) {
    return host_->repository.removeProperty(nameSpace, className, property);
}

std::size_t SimulatedHost::countInstances(const std::wstring& nameSpace,
                                          const std::wstring& className) const {
    return host_->repository.instances(nameSpace, className).size();
}

void SimulatedHost::addFault(const Fault& fault) {
    host_->faults.add(fault);
}

void SimulatedHost::addOverride(const ValueOverride& where, const VARIANT& value) {
    host_->faults.addOverride(where, value);
}

void SimulatedHost::clearFaults() {
    host_->faults.clear();
}

void SimulatedHost::setMethodResult(const std::wstring& className, const std::wstring& method,
                                    const std::wstring& outParameter, const VARIANT& value) {
    host_->methods.prescribe(className, method, outParameter, value);
}

void SimulatedHost::setMethodWithoutOutput(const std::wstring& className,
                                           const std::wstring& method) {
    host_->methods.prescribeNoOutput(className, method);
}

void SimulatedHost::clearMethodResults() {
    host_->methods.clear();
}

void SimulatedHost::setLocatorFailure(HRESULT result) {
    host_->locatorFailure = result;
}

void SimulatedHost::setCompilerFailure(HRESULT result) {
    host_->compilerFailure = result;
}

void SimulatedHost::setUnknownClassAtCreation(bool atCreation) {
    host_->unknownClassAtCreation = atCreation;
}

void SimulatedHost::endProcessAfterNextCalls(unsigned calls, unsigned exitCode) {
    host_->nextLimit.set(calls, exitCode);
}

std::vector<CallRecord> SimulatedHost::trace() const {
    return host_->trace.records();
}

void SimulatedHost::clearTrace() {
    host_->trace.clear();
}

void SimulatedHost::setTracing(bool enabled) {
    host_->trace.setEnabled(enabled);
}

LiveObjects SimulatedHost::liveObjects() const {
    return host_->ledger.counts();
}

}  // namespace quista::simulator

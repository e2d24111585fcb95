#include "simulator/com/simulated_host.h"

#include <utility>

#include "simulator/com/registry_values.h"
#include "simulator/com/sample_hosts.h"
#include "simulator/driver/mof_arrival.h"
#include "simulator/driver/published_classes.h"
#include "simulator/mof/mof_file.h"
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

bool fail(LoadError& error, const std::wstring& file, std::wstring reason) {
    error = {file, 0, 0, std::move(reason)};
    return false;
}

/// A host whose classes miss others that they build on has a text that cannot be read.
bool readsBack(const std::wstring& text, const Repository& repository) {
    Repository copy;
    MofFileSource source;
    return MofReader(copy, source).loadText(text, L"").ok() && copy == repository;
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
    const MofArrival arrival(host_->repository);
    if (!report(reader.loadFile(hostFile(fileOrSample)), error)) return false;
    arrival.settle(host_->repository);
    lastSeen_ = host_->repository;
    return true;
}

bool SimulatedHost::loadText(const std::wstring& mof, const std::wstring& sourceName,
                             LoadError& error) {
    MofFileSource source;
    MofReader reader(host_->repository, source);
    const MofArrival arrival(host_->repository);
    if (!report(reader.loadText(mof, sourceName), error)) return false;
    arrival.settle(host_->repository);
    return true;
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
    return loseClass(host_->repository, nameSpace, className) == RepositoryStatus::ok;
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

std::vector<unsigned char> SimulatedHost::registryValue(const std::wstring& keyPath,
                                                        const std::wstring& valueName) const {
    return simulator::registryValue(host_->repository, keyPath, valueName);
}

void SimulatedHost::setRegistryValue(const std::wstring& keyPath, const std::wstring& valueName,
                                     const std::vector<unsigned char>& bytes) {
    simulator::setRegistryValue(host_->repository, keyPath, valueName, bytes);
}

bool SimulatedHost::isSample(const std::wstring& fileOrSample) const {
    return isBareName(fileOrSample);
}

bool SimulatedHost::isChanged() const {
    return !(host_->repository == lastSeen_);
}

bool SimulatedHost::save(const std::wstring& file, LoadError& error) {
    if (isSample(file)) return fail(error, file, L"sample hosts are never written");
    const std::wstring text = dump();
    if (!readsBack(text, host_->repository)) {
        return fail(error, file, L"the host cannot be written as MOF: classes are missing");
    }
    if (std::optional<std::wstring> reason = writeMofFile(file, text)) {
        return fail(error, file, std::move(*reason));
    }
    lastSeen_ = host_->repository;
    return true;
}

bool SimulatedHost::removeClassesOf(const std::wstring& classFile, LoadError& error) {
    MofFileSource source;
    Repository scratch = host_->repository;
    const MofResult declared = MofReader(scratch, source).loadFile(simulator::classFile(classFile));
    if (!report(declared, error)) return false;
    for (const MofClassName& each : declared.classes) removeClass(each.nameSpace, each.className);
    return true;
}

}  // namespace quista::simulator

// The simulated WMI host: plays WMI to any client in the process, from hosts described in MOF text.
// This header is all that tests and tools see of it; the DLL is quistasim.dll.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quista::simulator {

/// Why a MOF text was refused, and where. Nothing of a refused text is loaded.
struct LoadError {
    std::wstring file;    ///< file or source name
    unsigned line = 0;    ///< counted from 1; 0 when the file could not be read
    unsigned column = 0;  ///< counted from 1
    std::wstring reason;
};

/// A fault to plan: which calls fail, and how. Empty texts match every call; all texts are compared
/// without case.
struct Fault {
    std::wstring interfaceName{};  ///< such as L"IWbemServices"
    std::wstring method{};         ///< such as L"ExecQuery", L"Next", L"Get"
    /// Class of the object, of the enumeration or query, or of the path; for ConnectServer and
    /// CompileFile the namespace; for IClassFactory::CreateInstance "WbemLocator" or "MofCompiler".
    std::wstring className{};
    std::wstring property{};  ///< property of Get and Put, WMI method of GetMethod and ExecMethod
    unsigned occurrence = 1;  ///< the first matching call that fails, counted from 1
    unsigned count = 1;       ///< how many calls fail from there on; 0 means all
    /// What the call returns. A faulted call does nothing else and consumes nothing: its outputs
    /// are null, also when the result is S_OK (a query without an enumerator, a method without
    /// outputs).
    HRESULT result = E_FAIL;
};

/// A value that Get delivers instead of the stored one, of whatever VARIANT type.
struct ValueOverride {
    std::wstring className{};
    std::wstring property{};
    unsigned occurrence = 1;  ///< the first matching Get, counted from 1
    unsigned count = 0;       ///< how many from there on; 0 means all
};

/// One recorded call.
struct CallRecord {
    std::wstring interfaceName{};
    std::wstring method{};
    std::wstring className{};  ///< as in Fault
    std::wstring detail{};     ///< property, WMI method, query text, object path or file
    HRESULT result = S_OK;
    std::wstring path{};  ///< object path of GetObject, PutInstance, DeleteInstance and ExecMethod
    // Of Put: the type of the value and the CIM type that the client gave.
    VARTYPE valueType = VT_EMPTY;
    long cimType = 0;
};

/// Objects that are alive, by kind.
struct LiveObjects {
    unsigned locators = 0;
    unsigned services = 0;
    unsigned enumerators = 0;
    unsigned objects = 0;  ///< IWbemClassObject: classes, instances, embedded objects, parameters
    unsigned compilers = 0;

    bool operator==(const LiveObjects&) const = default;
};

/// A simulated host. Not thread-safe: used from the thread that starts it.
class Simulator {
  public:
    virtual ~Simulator() = default;

    /// Loads a MOF file, or one of the sample hosts by name ("standard", "degraded", "empty",
    /// "bare"), into the repository. LUNs that are added to a host with a running DSM get its
    /// default policy and its reservation key where they leave their own NULL.
    virtual bool load(const std::wstring& fileOrSample, LoadError& error) = 0;
    /// Loads MOF text; `sourceName` stands for the file name in errors.
    virtual bool loadText(const std::wstring& mof, const std::wstring& sourceName,
                          LoadError& error) = 0;
    /// Forgets all classes and instances. Faults, overrides, trace and live objects stay.
    virtual void clear() = 0;
    /// The whole repository as MOF text that `loadText` reads back.
    virtual std::wstring dump() const = 0;

    /// Registers the simulator for WMI's class identifiers in the calling thread's apartment.
    virtual HRESULT start() = 0;
    /// Takes the registration back. Objects that clients hold stay usable.
    virtual void stop() = 0;

    /// Deletes a class with its subclasses and instances, as a damaged repository loses them; false
    /// when there is none. Instances of classes with the qualifier WMI, such as the DSM's and
    /// MPIO's, belong to the drivers: they come back when MOF text with the class is loaded or
    /// compiled. Until then they are kept in a namespace below root\simulator.
    virtual bool removeClass(const std::wstring& nameSpace, const std::wstring& className) = 0;
    /// Deletes every instance of a class.
    virtual void removeInstances(const std::wstring& nameSpace, const std::wstring& className) = 0;
    /// Deletes a property from the class, its instances and embedded objects, so that Get gives
    /// WBEM_E_NOT_FOUND.
    virtual bool removeProperty(const std::wstring& nameSpace, const std::wstring& className,
                                const std::wstring& property) = 0;
    /// Number of instances of a class, subclasses included.
    virtual std::size_t countInstances(const std::wstring& nameSpace,
                                       const std::wstring& className) const = 0;

    virtual void addFault(const Fault& fault) = 0;
    virtual void addOverride(const ValueOverride& where, const VARIANT& value) = 0;
    /// Forgets faults and overrides.
    virtual void clearFaults() = 0;
    /// Puts `value` in the place of an out-parameter that the driver would fill, in the class and
    /// its subclasses. A value that the parameter's type cannot take fails the call. With a
    /// refusal, a ReturnCode or Status of 0x40000000 or more, the driver is not asked and nothing
    /// changes. A host's file can do the same: see Simulator_MethodResult in
    /// hosts/classes/simulator.mof.
    virtual void setMethodResult(const std::wstring& className, const std::wstring& method,
                                 const std::wstring& outParameter, const VARIANT& value) = 0;
    /// Lets the method succeed without an out object.
    virtual void setMethodWithoutOutput(const std::wstring& className,
                                        const std::wstring& method) = 0;
    /// Forgets both.
    virtual void clearMethodResults() = 0;
    /// Lets the failure to create the WMI locator or the MOF compiler surface in CoCreateInstance.
    virtual void setLocatorFailure(HRESULT result) = 0;
    virtual void setCompilerFailure(HRESULT result) = 0;
    /// False (as WMI does for semisynchronous calls): an unknown class is reported by Next.
    /// True: by CreateInstanceEnum and ExecQuery.
    virtual void setUnknownClassAtCreation(bool atCreation) = 0;
    /// Ends the process with `exitCode` at call `calls` + 1 of IEnumWbemClassObject::Next, for
    /// clients that never stop calling. 0 switches it off.
    virtual void endProcessAfterNextCalls(unsigned calls, unsigned exitCode) = 0;

    virtual std::vector<CallRecord> trace() const = 0;
    virtual void clearTrace() = 0;
    /// Switches the trace off and on; load tests do without it.
    virtual void setTracing(bool enabled) = 0;
    virtual LiveObjects liveObjects() const = 0;

    /// A binary value of the simulated host's registry, below HKEY_LOCAL_MACHINE; empty when there
    /// is none. The host keeps such values, but plays no registry: that is its user's to do.
    virtual std::vector<unsigned char> registryValue(const std::wstring& keyPath,
                                                     const std::wstring& valueName) const = 0;
    virtual void setRegistryValue(const std::wstring& keyPath, const std::wstring& valueName,
                                  const std::vector<unsigned char>& bytes) = 0;

    /// Whether `load` takes the text for the name of a sample host.
    virtual bool isSample(const std::wstring& fileOrSample) const = 0;
    /// Whether the repository differs from what the last `load` or `save` left.
    virtual bool isChanged() const = 0;
    /// Writes the whole host to a MOF file that `load` reads back. The file is replaced as a whole:
    /// when anything goes wrong in between, the old one stays as it was. Names of sample hosts are
    /// refused.
    virtual bool save(const std::wstring& file, LoadError& error) = 0;
    /// Removes, as `removeClass` does, the classes that a MOF file declares: "korvadsm", "pdo",
    /// "lbpolicy" or "mpio" of the sample hosts, or a file. The classes that the file builds on
    /// must be there.
    virtual bool removeClassesOf(const std::wstring& classFile, LoadError& error) = 0;
};

/// Makes a simulator with an empty repository (namespaces root\wmi and root\cimv2 exist); a null
/// pointer when there is no memory for it.
using CreateSimulatorFunction = Simulator* (*)();
/// Stops and destroys a simulator.
using DestroySimulatorFunction = void (*)(Simulator*);

}  // namespace quista::simulator

extern "C" {
quista::simulator::Simulator* quistaCreateSimulator();
void quistaDestroySimulator(quista::simulator::Simulator* simulator);
/// Makes the MOF text of a host with `luns` LUNs of `pathsPerLun` paths each, consistent in the
/// vendor's and MPIO's classes, for load tests; empty when there is no memory for it.
void quistaGenerateHost(unsigned luns, unsigned pathsPerLun, std::wstring& mof);
}

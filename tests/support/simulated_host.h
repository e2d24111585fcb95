// A simulated host for one test: classes, instances, faults and the count of live objects.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <string>

#include "simulator/simulator.h"
#include "tests/support/mof_object.h"

namespace quista::test {

/// The namespaces that the library connects to.
inline constexpr const wchar_t* kWmi = L"root\\wmi";
inline constexpr const wchar_t* kCimv2 = L"root\\cimv2";

/// Initialises COM on the thread, makes a simulator with an empty repository and registers it as
/// the thread's WMI; takes all of it back at the end.
class SimulatedHost {
  public:
    SimulatedHost();
    ~SimulatedHost();
    SimulatedHost(const SimulatedHost&) = delete;
    SimulatedHost& operator=(const SimulatedHost&) = delete;

    simulator::Simulator* operator->() const { return simulator_; }

    /// Loads a sample host by name or a MOF file; refused text is a failure of the test.
    void load(const std::wstring& fileOrSample);
    /// Loads MOF text, into root\wmi unless it says otherwise.
    void loadText(const std::wstring& mof);
    /// Loads one of the sample hosts' class files, without instances: "pdo", "mpio", "korvadsm",
    /// "lbpolicy", "iscsi", "disks". "mpio" needs "pdo".
    void loadClasses(const std::wstring& name);
    /// The classes of MPIO's disks and of the DSM, without instances.
    void loadLunClasses();
    /// Adds an instance.
    void add(const MofObject& instance, const std::wstring& nameSpace = kWmi);

    // Faults: which calls fail, and with what. The first matching call that fails is counted from
    // 1; `count` 0 means all from there on.
    void failConnect(const std::wstring& nameSpace, HRESULT result);
    void failEnumeration(const std::wstring& className, HRESULT result);
    void failQuery(const std::wstring& className, HRESULT result);
    void failNext(const std::wstring& className, HRESULT result, unsigned occurrence = 1,
                  unsigned count = 0);
    void failGet(const std::wstring& className, const std::wstring& property, HRESULT result,
                 unsigned occurrence = 1, unsigned count = 0);
    void failPut(const std::wstring& className, const std::wstring& property, HRESULT result);
    void failGetObject(const std::wstring& className, HRESULT result);
    /// ExecMethod of one WMI method; S_OK gives success without an out object.
    void failMethod(const std::wstring& className, const std::wstring& method, HRESULT result);
    /// Any call, by interface and method.
    void fail(const std::wstring& interfaceName, const std::wstring& method, HRESULT result,
              const std::wstring& className = L"", const std::wstring& property = L"",
              unsigned occurrence = 1, unsigned count = 0);

    /// Lets Get deliver another value, of whatever type. The value stays the caller's.
    void replaceValue(const std::wstring& className, const std::wstring& property,
                      const VARIANT& value, unsigned occurrence = 1, unsigned count = 0);

  private:
    void check(bool loaded, const simulator::LoadError& error);

    simulator::Simulator* simulator_ = nullptr;
};

/// Compares the live objects at the end of a scope with those at its beginning; `allowed` may have
/// come on top, for references that the library keeps on purpose.
class LiveObjectsCheck {
  public:
    explicit LiveObjectsCheck(const SimulatedHost& host, simulator::LiveObjects allowed = {});
    ~LiveObjectsCheck();
    LiveObjectsCheck(const LiveObjectsCheck&) = delete;
    LiveObjectsCheck& operator=(const LiveObjectsCheck&) = delete;

  private:
    const SimulatedHost& host_;
    simulator::LiveObjects expected_;
};

}  // namespace quista::test

namespace quista::simulator {

void PrintTo(const LiveObjects& objects, std::ostream* out);

}  // namespace quista::simulator

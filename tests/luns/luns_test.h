// The fixture of the LUN tests: a host with the LUNs that a test adds.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <wbemcli.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "quista/luns.h"
#include "tests/luns/lun_objects.h"
#include "tests/support/allocation_spy.h"
#include "tests/support/library_test.h"
#include "tests/wmi/value.h"

namespace quista::test {

struct TaskMemoryDeleter {
    void operator()(void* block) const { CoTaskMemFree(block); }
};
template <typename Record>
using TaskBlock = std::unique_ptr<Record, TaskMemoryDeleter>;

struct ObjectReleaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using ObjectReference = std::unique_ptr<Interface, ObjectReleaser>;

/// Codes with which a call may fail. Any but 0 is a failure, 1 included, which is never logged.
inline constexpr unsigned long kFailures[] = {0x80041002, 0x80004005, 0x00040001, 1};
/// What a null object or a missing session counts as.
inline constexpr unsigned long kNullPointer = 0x80004003;

/// Bytes of a LUN's block with room for `paths` + 1 path records.
constexpr std::size_t lunBlockSize(std::size_t paths) {
    return 3360 + 1708 * paths;
}

/// What one call of ParseDiskInfoKORVA gave.
struct ParsedDisk {
    unsigned long status = 0;
    TaskBlock<_KORVADSM_DISKINFO> info;
};

class LunsTest : public LibraryTest {
  protected:
    LunsTest();

    /// Adds LUNs to the host and opens the library's session.
    void openWith(std::initializer_list<MofObject> luns);

    /// The host's only LUN instance. Reads nothing of it, and log and trace are empty afterwards.
    ObjectReference<IWbemClassObject> onlyLun();

    /// Opens a session on a host with one LUN and parses it.
    ParsedDisk parse(const MofObject& lun);
    /// Parses an instance.
    static ParsedDisk parse(IWbemClassObject* lun);

    /// The properties read so far, in order: "LUN.LunPath", "path.DsmId", "address.Lun".
    std::vector<std::string> reads() const;
    /// Calls on the services and enumerators so far: "ExecQuery <text>", "Next".
    std::vector<std::string> queries() const;
};

/// An object that is no WMI object.
ObjectReference<IUnknown> foreignObject();

/// The paths of an instance.
std::vector<ObjectReference<IUnknown>> pathsOf(IWbemClassObject* lun);

/// The log of one failed step.
LogLines failureOf(const std::string& place, unsigned long code);

/// A code as the simulated host takes it.
inline HRESULT resultOf(unsigned long code) {
    return static_cast<HRESULT>(code);
}

/// The texts that stay behind when a LUN's record has been filled: its three limited texts are not
/// freed.
std::vector<std::wstring> keptTexts(const std::wstring& serial);

/// How many of the blocks have one size.
long countOf(const std::vector<std::size_t>& survivors, std::size_t size);

}  // namespace quista::test

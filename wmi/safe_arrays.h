// Moving the contents of one-dimensional SAFEARRAYs in and out of plain arrays.
#pragma once

#include <windows.h>

#include <oleauto.h>
#include <wbemcli.h>

#include <cstddef>
#include <cstdint>

namespace quista {

/// Bounds of an array, both inclusive. An empty array has an upper bound below its lower one.
struct ArrayBounds {
    LONG lower = 0;
    LONG upper = -1;

    LONG count() const noexcept { return upper >= lower ? upper - lower + 1 : 0; }
};

/// Bounds of the array that a value holds; empty when it holds none, or one of several dimensions.
ArrayBounds boundsOf(const VARIANT& value);

/// Copies the elements into slots of 8 bytes: strings as copies, interfaces with a reference added.
/// Elements beyond `capacity` are not fetched.
/// @return number of elements copied
LONG SafeArrayToElements(const VARIANT& value, void** slots, LONG capacity);

/// Stores slot i as element i, as far as `capacity` slots go. The slot holds the value itself for
/// arrays of strings and interfaces.
/// @return number of elements stored, 0 at the first failure
LONG ElementsToSafeArray(const VARIANT& value, void** slots, LONG capacity);

/// Copies the elements of a byte array, all or none: nothing when there are more than `capacity`.
/// @return number of bytes copied
LONG SafeArrayToBytes(const VARIANT& value, unsigned char* bytes, LONG capacity);

/// Reads and writes one element of a byte array. A value that holds no byte array is refused with
/// E_INVALIDARG.
HRESULT getByteElement(const VARIANT& value, LONG index, unsigned char& byte);
HRESULT putByteElement(const VARIANT& value, LONG index, unsigned char byte);

/// Copies elements 0 to `count` - 1 of a byte array one by one; those it does not have are left.
void copyFirstBytes(const VARIANT& value, unsigned char* bytes, LONG count);

/// Room for the elements of an array of which `limit` count: a limit that is larger than the array
/// asks for no more memory than the array needs.
std::size_t roomFor(const VARIANT& value, std::uint32_t limit);

/// The embedded objects of an array property, in a table of fixed room. An element that is null or
/// no WMI object stands as null.
class ObjectTable {
  public:
    /// Makes room for `room` objects.
    explicit ObjectTable(std::size_t room) noexcept;
    ~ObjectTable();
    ObjectTable(const ObjectTable&) = delete;
    ObjectTable& operator=(const ObjectTable&) = delete;

    /// False when there was no memory for the table.
    bool valid() const noexcept { return slots_ != nullptr; }

    /// Fetches the elements of an array of objects, as far as the room goes.
    /// @return number of elements fetched, 0 for any other value
    LONG fill(const VARIANT& value);

    LONG count() const noexcept { return count_; }
    IWbemClassObject* at(LONG index) const noexcept;
    void release(LONG index) noexcept;
    void** slots() noexcept { return slots_; }
    IWbemClassObject* const* objects() const noexcept {
        return reinterpret_cast<IWbemClassObject* const*>(slots_);
    }

    /// Leaves the objects unreleased, where callers rely on what the library does not release.
    void keepObjectsOnPurpose() noexcept { count_ = 0; }

    /// Leaves the table and its objects unreleased, where callers rely on what the library does not
    /// release.
    void keepOnPurpose() noexcept;

  private:
    void** slots_;
    LONG room_;
    LONG count_ = 0;
};

}  // namespace quista

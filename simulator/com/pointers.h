// Owners of interface pointers and BSTRs inside the simulator, and care for clients' out pointers.
#pragma once

#include <windows.h>

#include <memory>
#include <new>
#include <ole2.h>
#include <string_view>

namespace quista::simulator {

struct ComReleaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
/// Owns one reference.
template <class Interface>
using ComOwner = std::unique_ptr<Interface, ComReleaser>;

/// Nulls a client's out pointer, which the client may have left out.
template <class T>
void clearOutput(T** output) {
    if (output != nullptr) *output = nullptr;
}

/// Hands a reference over to a client that may not want it.
template <class Interface, class Object>
void deliver(ComOwner<Object> object, Interface** output) {
    if (output != nullptr) *output = object.release();
}

/// The text of a BSTR or wide pointer of a client; null counts as empty.
inline std::wstring_view textOf(const wchar_t* text) {
    return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

/// A new BSTR, owned by the caller.
inline BSTR makeBstr(std::wstring_view text) {
    BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (copy == nullptr) throw std::bad_alloc();
    return copy;
}

}  // namespace quista::simulator

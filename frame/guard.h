// The wall that no exception crosses: every export that may throw runs its body through one of
// these.
#pragma once

#include <windows.h>

#include <new>
#include <utility>

#include "quista/status.h"

namespace quista {

/// Runs the body of an export that returns a status. `onFailure` is the status that the export
/// starts with.
template <typename Body>
DWORD guarded(DWORD onFailure, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
        return DSM_NO_MEMORY;
    } catch (...) {
        return onFailure;
    }
}

/// Runs the body of an export that returns a flag; a failure is a no.
template <typename Body>
unsigned char guardedFlag(Body&& body) noexcept {
    try {
        return std::forward<Body>(body)() ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

/// Runs the body of an export that returns nothing.
template <typename Body>
void guardedVoid(Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
    } catch (...) {
        // Such an export never fails towards its caller.
    }
}

}  // namespace quista

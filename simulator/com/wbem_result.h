// WMI's status codes as results.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include "simulator/repository/repository.h"

namespace quista::simulator {

/// The published enumeration is unsigned, results are not.
constexpr HRESULT wbem(WBEMSTATUS status) {
    return static_cast<HRESULT>(status);
}

/// What WMI answers for what the repository found.
constexpr HRESULT wbem(RepositoryStatus status) {
    switch (status) {
        case RepositoryStatus::ok:
            return S_OK;
        case RepositoryStatus::unknownNamespace:
            return wbem(WBEM_E_INVALID_NAMESPACE);
        case RepositoryStatus::unknownClass:
            return wbem(WBEM_E_INVALID_CLASS);
        case RepositoryStatus::unknownSuperclass:
            return wbem(WBEM_E_INVALID_SUPERCLASS);
        case RepositoryStatus::unknownInstance:
            return wbem(WBEM_E_NOT_FOUND);
        case RepositoryStatus::nullKey:
            return wbem(WBEM_E_ILLEGAL_NULL);
        case RepositoryStatus::alreadyExists:
            return wbem(WBEM_E_ALREADY_EXISTS);
        case RepositoryStatus::abstractClass:
        case RepositoryStatus::noKey:
            return wbem(WBEM_E_INVALID_OBJECT);
        case RepositoryStatus::cyclicInheritance:
        case RepositoryStatus::tooManyAncestors:
        case RepositoryStatus::typeConflict:
            break;
    }
    return wbem(WBEM_E_FAILED);
}

}  // namespace quista::simulator

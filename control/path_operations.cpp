// The operations on one path.
#include <windows.h>

#include <initializer_list>
#include <vector>

#include "control/itl_method.h"
#include "frame/bstr.h"
#include "frame/console.h"
#include "frame/guard.h"
#include "quista/control.h"
#include "quista/status.h"

namespace quista {

namespace {

struct Argument {
    const wchar_t* name;
    unsigned long long value;
};

/// Calls a method of the LUN that owns the path. The path identifier is the first argument.
DWORD callPathMethod(const wchar_t* method, std::initializer_list<Argument> arguments) {
    return guarded(DSM_ERROR, [&]() -> DWORD {
        const Argument& path = *arguments.begin();
        traceFormatted(L"%ls  %ls: 0x%x\n", method, path.name, static_cast<unsigned>(path.value));
        std::vector<UniqueBstr> owned;
        std::vector<BSTR> names;
        std::vector<unsigned long long> values;
        for (const Argument& argument : arguments) {
            names.push_back(owned.emplace_back(argument.name).get());
            values.push_back(argument.value);
        }
        return CallMethodforITL(L"KORVADSM_LUNINFO", method, names.data(), values.data(),
                                static_cast<DWORD>(arguments.size()));
    });
}

}  // namespace

}  // namespace quista

unsigned long KORVADSMMakeActivePath(unsigned long long pathId) {
    return quista::callPathMethod(L"SetActive", {{L"DsmID", pathId}});
}

unsigned long KORVADSMMakePassivePath(unsigned long long pathId) {
    return quista::callPathMethod(L"SetPassive", {{L"DsmID", pathId}});
}

unsigned long KORVADSMEnablePath(unsigned long long pathId) {
    return quista::callPathMethod(L"SetEnabled", {{L"DsmID", pathId}});
}

unsigned long KORVADSMDisablePath(unsigned long long pathId) {
    return quista::callPathMethod(L"SetDisabled", {{L"DsmID", pathId}});
}

unsigned long KORVADSMSetPathWeight(unsigned long long pathId, unsigned long weight) {
    return quista::callPathMethod(L"SetWeight", {{L"DsmID", pathId}, {L"Weight", weight}});
}

unsigned long KORVADSMUpdateTPG(unsigned long pathId) {
    // The identifier widens without sign here, unlike the DsmId that it is compared with.
    return quista::callPathMethod(L"UpdateRTPG", {{L"DsmID", pathId}});
}
